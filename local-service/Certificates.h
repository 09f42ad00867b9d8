#pragma once

#include <optional>
#include <string>

namespace localservice {

struct Certificates {
    std::string authorityFile; // what a client has to trust
    std::string serverFile;
    std::string serverKeyFile;
};

// Makes sure that the folder holds a certificate for localhost and 127.0.0.1 that is good for another month
// at least, signed by an authority of this folder's own. The authority's key is thrown away as soon as it has
// signed: nobody can use it to sign for another host.
[[nodiscard]] std::optional<Certificates> ensureCertificates(const std::string& directory);

} // namespace localservice

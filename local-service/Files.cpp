#include "Files.h"

#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace localservice {

std::optional<std::string> contentsOfFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

bool writeFile(const std::string& path, std::string_view content)
{
    const std::string temporary = path + ".new";
    const int descriptor = ::open(temporary.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return false;
    bool isWritten = true;
    while (isWritten && !content.empty()) {
        const ssize_t count = ::write(descriptor, content.data(), content.size());
        isWritten = count > 0;
        content.remove_prefix(isWritten ? static_cast<std::size_t>(count) : 0);
    }
    isWritten = ::close(descriptor) == 0 && isWritten;
    if (isWritten && std::rename(temporary.c_str(), path.c_str()) == 0)
        return true;
    ::unlink(temporary.c_str());
    return false;
}

} // namespace localservice

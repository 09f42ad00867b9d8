#pragma once

#include "DirectMessageStore.h"
#include "MediaStore.h"
#include "ShortLinkStore.h"
#include "StatusStore.h"

namespace localservice {

// Where the two listeners answer, as the begin of a link: no slash at the end.
struct ServiceAddresses {
    std::string http;
    std::string https;
};

// Everything a route needs: the data and the addresses that links into the service begin with.
struct Site {
    Database database;
    UserStore users { database };
    StatusStore statuses { database };
    DirectMessageStore messages { database };
    ShortLinkStore shortLinks { database };
    std::string dataDirectory;
    MediaStore media { database, dataDirectory };
    ServiceAddresses addresses;

    [[nodiscard]] std::string avatarLink(const User& user, std::string_view suffix) const
    {
        return user.hasAvatar ? addresses.http + "/avatar/" + user.screenName + std::string(suffix) + ".png"
                              : addresses.http + "/theme/default-avatar" + std::string(suffix) + ".png";
    }
    [[nodiscard]] std::string profileLink(const User& user) const
    {
        return addresses.http + "/" + user.screenName;
    }
};

} // namespace localservice

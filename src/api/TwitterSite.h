#pragma once

#include "api/TwitterServiceHosts.h"

#include <optional>

/// What is known of one site that speaks the service's interface. A value; any thread.
struct TwitterSite {
    TwitterServiceHosts hosts = {};
    /// As the site calls itself; empty when it did not say.
    QString name = {};
    /// The longest post it takes, in characters; 0 when there is no limit, nothing when it did not say.
    std::optional<qint32> textLimit = {};
    /// Whether it takes pictures itself.
    bool takesUploads = false;
    /// The certificates of its servers that the user trusts although nobody vouches for them.
    QList<KRServerCertificate> certificates = {};
};

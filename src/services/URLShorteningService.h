#pragma once

#include "services/TwitterServiceContext.h"
#include "transport/KRCallback.h"

#include <QString>

class KRHTTPRequest;
class KRParameters;

/// The user default with the number of the chosen shortener.
inline constexpr char URLShorteningServicePreferredServiceDefaultsKey[]
    = "URLShorteningServicePreferredService";

/// The choices. Any other number means Bitly.
enum URLShorteningServicePreference {
    URLShorteningServiceBitly = 0,
    URLShorteningServiceTinyURL = 1,
    URLShorteningServiceIsGd = 2,
    URLShorteningServiceTrIm = 3,
    URLShorteningServiceDiggBar = 4,
};

/// Makes links short, and finds out where short ones lead. The base class of the services, and the way to the
/// one that the user has chosen.
///
/// Any thread. A callback is invoked once, with the link or an error, on the shared background thread unless
/// said otherwise. A service without a host answers with an error and sends nothing.
class URLShorteningService {
public:
    URLShorteningService() = default;
    URLShorteningService(const URLShorteningService&) = delete;
    URLShorteningService& operator=(const URLShorteningService&) = delete;
    virtual ~URLShorteningService() = default;

    /// Whether the text begins with the address of a known short-link service, letter by letter.
    [[nodiscard]] static bool isShortURLString(const TwitterServiceHosts& hosts, const QString& string);
    /// Asks the chosen service. For what is short already the callback gets an error on the calling thread,
    /// before this returns.
    static void
    shortenURLString(const TwitterServiceContext& context, const QString& url, KRCallback<QString> callback);
    /// Asks the expansion service, which knows the links of everybody.
    static void
    expandURLString(const TwitterServiceContext& context, const QString& url, KRCallback<QString> callback);
    /// The chosen service. The instances live until the program ends, and have no state.
    [[nodiscard]] static const URLShorteningService& currentService(const TwitterServiceContext& context);

    /// Asks this service. A class that does not shorten (or expand) logs so and never answers.
    virtual void shortenURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const;
    virtual void
    expandURLString(const TwitterServiceHosts& hosts, const QString& url, KRCallback<QString> callback) const;

protected:
    /// Reads the answer to a request that succeeded.
    using Reader = KRResult<QString> (*)(const KRHTTPRequest& request);
    static void _sendGET(const TwitterServiceHosts& hosts,
        const char* hostKey,
        const QString& path,
        const KRParameters& parameters,
        Reader reader,
        KRCallback<QString> callback);
};

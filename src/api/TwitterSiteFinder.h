#pragma once

#include "api/TwitterSite.h"
#include "transport/KRCallback.h"

#include <QUrl>

#include <deque>
#include <memory>

class KRHTTPRequest;

/// Finds out where a site's interface is, from whatever people call the site. Asks the site's description
/// (Really Simple Discovery, "rsd.xml", or what the front page names as its EditURI), else tries "api" and
/// the folder itself; then asks the interface for the site's name and limits. Only https is ever asked, and
/// nobody is told a name or a password.
///
/// Made and started from any thread; the rest is done on the background thread.
class TwitterSiteFinder : public std::enable_shared_from_this<TwitterSiteFinder> {
public:
    /// The callback is invoked on the background thread, with an error for people to read when no interface
    /// was found. Where that is because of a certificate the error tells of it.
    static void findSite(const QString& typed, const KRCallback<TwitterSite>& callback);

    /// The address that a typed text stands for: a host, with or without scheme and folder, a whole address
    /// from the browser, or a person with an "@" and a host. Always https, with a slash at its end; empty for
    /// what is none of these.
    [[nodiscard]] static QUrl rootForText(const QString& typed);

    TwitterSiteFinder(const TwitterSiteFinder&) = delete;
    TwitterSiteFinder& operator=(const TwitterSiteFinder&) = delete;
    ~TwitterSiteFinder() = default;

    // What documents say; public for those who have such a document.
    /// The interface a site's description names; empty when it names none.
    [[nodiscard]] static QUrl interfaceInDescription(const QByteArray& rsd);
    /// Where a page says the site's description is; empty when it does not.
    [[nodiscard]] static QUrl descriptionInPage(const QByteArray& html, const QUrl& page);
    /// Takes over what a site's configuration says. False when it is no such document.
    static bool readConfiguration(const QByteArray& xml, TwitterSite& site);

private:
    struct Step {
        enum class Kind { Description, Page, Configuration, Credentials } kind;
        QUrl url;
    };

    TwitterSiteFinder(const QUrl& root, KRCallback<TwitterSite> callback);
    void _next();
    void _answered(KRHTTPRequest& request);
    void _tryInterface(const QUrl& base);
    void _movedTo(const QUrl& base);
    void _found(TwitterSite site);

    KRCallback<TwitterSite> m_callback;
    QString m_server;
    // The same as certificates name it.
    QString m_protectedServer;
    std::deque<Step> m_steps;
    Step m_step {};
    // Of the interface that is being tried.
    QUrl m_base;
    // The last failure, for when there is nothing else to tell.
    KRError m_error;
    // The first refusal of a certificate: it may be all that is between here and the service.
    std::optional<KRError> m_certificateError;
};

#pragma once

#include "api/TwitterServiceHosts.h"
#include "transport/KRCallback.h"

#include <QString>
#include <QUrl>

class KRHTTPRequest;
class KRXMLParser;

/// An answer of the service that stores long posts, and the way to it. A value.
class Twitlonger {
public:
    /// Stores the text. The callback is invoked once, on the shared background thread; an answer without
    /// content, with which there would be nothing to post, is an error. Null arguments are left out. Any
    /// thread.
    static void post(const TwitterServiceHosts& hosts,
        const QString& text,
        const QString& twitterUsername,
        KRCallback<Twitlonger> callback);
    /// The program's key for the service.
    [[nodiscard]] static QString applicationKey();

    [[nodiscard]] const QString& identifier() const { return m_identifier; }
    [[nodiscard]] const QUrl& link() const { return m_link; }
    [[nodiscard]] const QString& shortLink() const { return m_shortLink; }
    /// What to post in place of the long text.
    [[nodiscard]] const QString& content() const { return m_content; }
    /// Kept for callers; the service does not tell.
    [[nodiscard]] const QString& username() const { return m_username; }
    void setUsername(const QString& username) { m_username = username; }

private:
    static KRResult<Twitlonger> didPost(const KRHTTPRequest& request);
    void parseXML(KRXMLParser& parser);

    QString m_identifier;
    QUrl m_link;
    QString m_shortLink;
    QString m_content;
    QString m_username;
};

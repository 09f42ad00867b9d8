#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <memory>

using CURL = void;

/// Looks at the certificate that a server shows to one transfer, and decides about it.
///  - It is accepted as everywhere else: somebody known vouches for it, for this host and this day. What the
///    server showed is known afterwards, whatever became of it.
///  - Where one certificate is trusted for the server, that one is accepted too, whoever made it out to
///    whomever, for whichever days; and before anything is sent it is made sure that the connection, which
///    may be an older one, was accepted for one of these two reasons.
/// Background thread only; outlives its transfer.
class KRCertificateCheck {
public:
    /// With libcurl over anything but OpenSSL there is nothing to look at, and nothing else is accepted.
    KRCertificateCheck(CURL* handle, const QUrl& url, const QString& trustedFingerprint);
    KRCertificateCheck(const KRCertificateCheck&) = delete;
    KRCertificateCheck& operator=(const KRCertificateCheck&) = delete;
    ~KRCertificateCheck() = default;

    /// Of the certificate that the server showed; empty on a connection that was made before.
    [[nodiscard]] QString fingerprint() const;
    /// Whether another certificate than the one shown is trusted for the server.
    [[nodiscard]] bool isAnotherTrusted() const { return !m_trusted.isEmpty() && m_trusted != fingerprint(); }
    /// Whether the transfer ended because the connection it got, an older one, is not to be used any more.
    [[nodiscard]] bool hasRefusedOldConnection() const { return m_hasRefusedOldConnection; }

private:
    struct Shown;

    static int _contextCallback(CURL* handle, void* context, void* self);
    static int _beforeRequestCallback(void* self, char*, char*, int, int);

    CURL* m_handle;
    QString m_trusted;
    QByteArray m_host;
    // Shared with the connection, which may live longer.
    std::shared_ptr<Shown> m_shown;
    bool m_hasRefusedOldConnection = false;
};

#pragma once

#include "foundation/KRError.h"

#include <QUrl>

#include <optional>

/// A server and the certificate that it shows, known by its SHA-256 fingerprint. A value; any thread.
struct KRServerCertificate {
    /// Host and port, as "example.org:443".
    QString server;
    /// Pairs of upper-case digits with colons between them, over the certificate's DER form.
    QString fingerprint;

    bool operator==(const KRServerCertificate&) const = default;

    /// The server an address leads to; empty when that is none over https.
    [[nodiscard]] static QString serverOfURL(const QUrl& url);
    /// What people copy from elsewhere (small letters, without colons, with spaces, behind "SHA256
    /// Fingerprint=") as a fingerprint; empty for what is none.
    [[nodiscard]] static QString fingerprintFromText(const QString& text);
    /// The server's name for people: the port is left out where it is the usual one.
    [[nodiscard]] QString serverName() const;
    /// In lines of eight pairs, so that two people can compare it.
    [[nodiscard]] QString groupedFingerprint() const;

    /// The certificate that a connection was refused for; nothing when it failed for another reason.
    [[nodiscard]] static std::optional<KRServerCertificate> refusedByError(const KRError& error);
    /// The same, as the details of an error.
    [[nodiscard]] QMap<QString, QString> errorDetails() const;
};

/// The certificates that are trusted although nobody vouches for them: at most one a server, and for that
/// server alone. Connections begun after a change follow it. Any thread.
namespace KRTrustedCertificates {

/// In place of the one that was trusted for the server before.
void trust(const KRServerCertificate& certificate);
void stopTrusting(const QString& server);
/// Empty when none is trusted for the server.
[[nodiscard]] QString fingerprintForServer(const QString& server);

} // namespace KRTrustedCertificates

#include "transport/KRServerCertificate.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringList>

#include <mutex>

using namespace Qt::StringLiterals;

namespace {

constexpr int UsualPort = 443;
constexpr qsizetype FingerprintDigits = 64;
constexpr qsizetype PairsInALine = 8;
constexpr auto serverDetail = "server"_L1;
constexpr auto fingerprintDetail = "certificateFingerprint"_L1;

std::mutex s_lock;

QHash<QString, QString>& trustedFingerprints()
{
    static QHash<QString, QString> fingerprints;
    return fingerprints;
}

} // namespace

QString KRServerCertificate::serverOfURL(const QUrl& url)
{
    const QString host = url.host(QUrl::FullyEncoded).toLower();
    const bool isProtected = url.scheme() == "https"_L1 && !host.isEmpty();
    return isProtected ? u"%1:%2"_s.arg(host).arg(url.port(UsualPort)) : QString();
}

QString KRServerCertificate::fingerprintFromText(const QString& text)
{
    // Whatever stands before an equals sign names the kind of digest.
    QString digits = text.section(u'=', -1).toUpper();
    static const QRegularExpression between(u"[\\s:]"_s);
    digits.remove(between);
    static const QRegularExpression hexadecimal(u"\\A[0-9A-F]*\\z"_s);
    if (digits.size() != FingerprintDigits || !hexadecimal.match(digits).hasMatch())
        return {};
    for (qsizetype at = FingerprintDigits - 2; at > 0; at -= 2)
        digits.insert(at, u':');
    return digits;
}

QString KRServerCertificate::serverName() const
{
    const QString usual = u":%1"_s.arg(UsualPort);
    return server.endsWith(usual) ? server.chopped(usual.size()) : server;
}

QString KRServerCertificate::groupedFingerprint() const
{
    const QStringList pairs = fingerprint.split(u':');
    QStringList lines;
    for (qsizetype at = 0; at < pairs.size(); at += PairsInALine)
        lines.append(pairs.mid(at, PairsInALine).join(u':'));
    return lines.join(u'\n');
}

std::optional<KRServerCertificate> KRServerCertificate::refusedByError(const KRError& error)
{
    const QString fingerprint = error.details.value(fingerprintDetail);
    if (fingerprint.isEmpty())
        return std::nullopt;
    return KRServerCertificate { error.details.value(serverDetail), fingerprint };
}

QMap<QString, QString> KRServerCertificate::errorDetails() const
{
    return { { serverDetail, server }, { fingerprintDetail, fingerprint } };
}

void KRTrustedCertificates::trust(const KRServerCertificate& certificate)
{
    std::scoped_lock guard(s_lock);
    trustedFingerprints().insert(certificate.server, certificate.fingerprint);
}

void KRTrustedCertificates::stopTrusting(const QString& server)
{
    std::scoped_lock guard(s_lock);
    trustedFingerprints().remove(server);
}

QString KRTrustedCertificates::fingerprintForServer(const QString& server)
{
    std::scoped_lock guard(s_lock);
    return trustedFingerprints().value(server);
}

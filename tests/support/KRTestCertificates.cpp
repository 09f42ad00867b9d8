#include "support/KRTestCertificates.h"

#include <QCryptographicHash>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace {

using Key = std::shared_ptr<EVP_PKEY>;
using Certificate = std::shared_ptr<X509>;

constexpr long day = 24 * 60 * 60;

struct Authority {
    Key key;
    Certificate certificate;
};

Key makeKey()
{
    return { EVP_EC_gen("P-256"), EVP_PKEY_free };
}

void addExtension(X509* certificate, X509* issuer, int kind, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value);
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

/// A certificate for the key, valid since the day before yesterday until `end` seconds from now; without an authority it signs
/// itself.
Certificate
makeCertificate(const Key& key, const char* name, const Authority* authority, const char* hosts, long end)
{
    static long serial = 1;
    Certificate certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serial++);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -2 * day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), end);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME* subject = X509_get_subject_name(certificate.get());
    const auto* const bytes = reinterpret_cast<const unsigned char*>(name);
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8, bytes, -1, -1, 0);
    X509* issuer = authority ? authority->certificate.get() : certificate.get();
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(issuer));
    const char* const constraints = authority ? "CA:FALSE" : "critical,CA:TRUE";
    addExtension(certificate.get(), issuer, NID_basic_constraints, constraints);
    if (hosts)
        addExtension(certificate.get(), issuer, NID_subject_alt_name, hosts);
    X509_sign(certificate.get(), authority ? authority->key.get() : key.get(), EVP_sha256());
    return certificate;
}

Authority makeAuthority(const char* name)
{
    const Key key = makeKey();
    return { key, makeCertificate(key, name, nullptr, nullptr, day) };
}

const Authority& testAuthority()
{
    static const Authority authority = makeAuthority("Pelinor test authority");
    return authority;
}

} // namespace

KRTestTLSContext KRMakeTestTLSContext(KRTestCertificate kind)
{
    static const Authority stranger = makeAuthority("Somebody else");
    const Authority& authority = kind == KRTestCertificate::UnknownAuthority ? stranger : testAuthority();
    const char* hosts
        = kind == KRTestCertificate::OtherHost ? "DNS:elsewhere.example" : "IP:127.0.0.1,DNS:localhost";
    const long end = kind == KRTestCertificate::Expired ? -day : day;
    const Key key = makeKey();
    const Certificate certificate = makeCertificate(key, "test server", &authority, hosts, end);
    KRTestTLSContext context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    SSL_CTX_use_certificate(context.get(), certificate.get());
    SSL_CTX_use_PrivateKey(context.get(), key.get());
    return context;
}

QString KRTestFingerprint(const KRTestTLSContext& context)
{
    unsigned char* der = nullptr;
    const int length = i2d_X509(SSL_CTX_get0_certificate(context.get()), &der);
    const QByteArray bytes(reinterpret_cast<const char*>(der), length);
    OPENSSL_free(der);
    const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    return QString::fromLatin1(digest.toHex(':').toUpper());
}

QString KRTestAuthorityFile()
{
    static const QTemporaryDir directory;
    static const QString path = [] {
        QString file = directory.filePath(QStringLiteral("authority.pem"));
        std::FILE* stream = std::fopen(file.toUtf8().constData(), "w");
        PEM_write_X509(stream, testAuthority().certificate.get());
        std::fclose(stream);
        return file;
    }();
    return path;
}

#include "Certificates.h"

#include "Files.h"

#include <array>
#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace localservice {

namespace {

constexpr long lifetimeSeconds = 10L * 365 * 24 * 3600;
constexpr long renewalSeconds = 30L * 24 * 3600;

struct Free {
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(BIO* bio) const { BIO_free(bio); }
    void operator()(X509_EXTENSION* extension) const { X509_EXTENSION_free(extension); }
};
using Certificate = std::unique_ptr<X509, Free>;
using Key = std::unique_ptr<EVP_PKEY, Free>;
using Memory = std::unique_ptr<BIO, Free>;

bool addExtension(X509* certificate, X509* issuer, int kind, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, Free> extension(
        X509V3_EXT_conf_nid(nullptr, &context, kind, value));
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

// A certificate with a random serial number and no extensions yet, issued by itself when there is no issuer.
Certificate makeCertificate(const char* commonName, EVP_PKEY* key, X509* issuer)
{
    Certificate certificate(X509_new());
    std::array<unsigned char, 16> serial {};
    if (!certificate || RAND_bytes(serial.data(), serial.size()) != 1)
        return nullptr;
    serial[0] &= 0x7F;
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> number(BN_bin2bn(serial.data(), serial.size(), nullptr),
        &BN_free);
    BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate.get()));
    X509_set_version(certificate.get(), X509_VERSION_3);
    // An hour of allowance for a clock that is set back.
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), lifetimeSeconds);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME* name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name,
        "CN",
        MBSTRING_UTF8,
        reinterpret_cast<const unsigned char*>(commonName),
        -1,
        -1,
        0);
    X509_set_issuer_name(certificate.get(), issuer ? X509_get_subject_name(issuer) : name);
    return certificate;
}

Certificate makeAuthority(EVP_PKEY* key)
{
    Certificate authority = makeCertificate("Pelinor local service authority", key, nullptr);
    X509* raw = authority.get();
    const bool isComplete = raw && addExtension(raw, raw, NID_basic_constraints, "critical,CA:TRUE,pathlen:0")
        && addExtension(raw, raw, NID_key_usage, "critical,keyCertSign,cRLSign")
        && addExtension(raw, raw, NID_subject_key_identifier, "hash")
        && X509_sign(raw, key, EVP_sha256()) > 0;
    return isComplete ? std::move(authority) : nullptr;
}

Certificate makeServerCertificate(EVP_PKEY* key, X509* authority, EVP_PKEY* authorityKey)
{
    Certificate server = makeCertificate("localhost", key, authority);
    X509* raw = server.get();
    const bool isComplete = raw && addExtension(raw, authority, NID_basic_constraints, "critical,CA:FALSE")
        && addExtension(raw, authority, NID_key_usage, "critical,digitalSignature")
        && addExtension(raw, authority, NID_ext_key_usage, "serverAuth")
        && addExtension(raw, authority, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1,IP:::1")
        && addExtension(raw, authority, NID_subject_key_identifier, "hash")
        && addExtension(raw, authority, NID_authority_key_identifier, "keyid:always")
        && X509_sign(raw, authorityKey, EVP_sha256()) > 0;
    return isComplete ? std::move(server) : nullptr;
}

std::string contents(BIO* memory)
{
    char* data = nullptr;
    const long length = BIO_get_mem_data(memory, &data);
    return { data, static_cast<std::size_t>(length) };
}

std::string pemOf(X509* certificate)
{
    const Memory memory(BIO_new(BIO_s_mem()));
    return PEM_write_bio_X509(memory.get(), certificate) == 1 ? contents(memory.get()) : std::string();
}

std::string pemOf(EVP_PKEY* key)
{
    const Memory memory(BIO_new(BIO_s_mem()));
    const bool isWritten
        = PEM_write_bio_PKCS8PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1;
    return isWritten ? contents(memory.get()) : std::string();
}

Memory memoryHolding(const std::string& text)
{
    return Memory(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

// The three files belong together and will still be good in a month.
bool areUsable(const Certificates& files)
{
    const std::string authorityText = contentsOfFile(files.authorityFile).value_or("");
    const std::string serverText = contentsOfFile(files.serverFile).value_or("");
    const std::string keyText = contentsOfFile(files.serverKeyFile).value_or("");
    const Certificate authority(
        PEM_read_bio_X509(memoryHolding(authorityText).get(), nullptr, nullptr, nullptr));
    const Certificate server(PEM_read_bio_X509(memoryHolding(serverText).get(), nullptr, nullptr, nullptr));
    const Key key(PEM_read_bio_PrivateKey(memoryHolding(keyText).get(), nullptr, nullptr, nullptr));
    if (!authority || !server || !key || X509_check_private_key(server.get(), key.get()) != 1)
        return false;
    time_t deadline = time(nullptr) + renewalSeconds;
    return X509_verify(server.get(), X509_get0_pubkey(authority.get())) == 1
        && X509_cmp_time(X509_get0_notAfter(server.get()), &deadline) > 0;
}

} // namespace

std::optional<Certificates> ensureCertificates(const std::string& directory)
{
    Certificates files { directory + "/ca.pem", directory + "/server.pem", directory + "/server-key.pem" };
    if (areUsable(files))
        return files;
    const Key authorityKey(EVP_EC_gen("P-256"));
    const Key serverKey(EVP_EC_gen("P-256"));
    if (!authorityKey || !serverKey)
        return std::nullopt;
    const Certificate authority = makeAuthority(authorityKey.get());
    const Certificate server
        = authority ? makeServerCertificate(serverKey.get(), authority.get(), authorityKey.get()) : nullptr;
    const bool isWritten = server && writeFile(files.serverKeyFile, pemOf(serverKey.get()))
        && writeFile(files.serverFile, pemOf(server.get()))
        && writeFile(files.authorityFile, pemOf(authority.get()));
    return isWritten ? std::optional(std::move(files)) : std::nullopt;
}

} // namespace localservice

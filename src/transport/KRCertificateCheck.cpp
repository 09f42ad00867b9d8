#include "transport/KRCertificateCheck.h"

#include "transport/KRCurlLibrary.h"

#include <array>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

namespace {

const KRCurlLibrary& curl()
{
    return KRCurlLibrary::shared();
}

/// What is used of OpenSSL, as libcurl brings it along; its own copy of it could be another one.
struct OpenSSL {
    decltype(&X509_verify_cert) verify = nullptr;
    decltype(&X509_STORE_CTX_get0_cert) certificateOfStore = nullptr;
    decltype(&X509_STORE_CTX_set_error) setError = nullptr;
    decltype(&X509_digest) digest = nullptr;
    decltype(&EVP_sha256) sha256 = nullptr;
    decltype(&X509_check_host) checkHost = nullptr;
    decltype(&X509_check_ip_asc) checkAddress = nullptr;
    decltype(&SSL_CTX_set_cert_verify_callback) setVerifyCallback = nullptr;
    decltype(&SSL_CTX_set_ex_data) setData = nullptr;
    decltype(&SSL_CTX_get_ex_data) data = nullptr;
    decltype(&SSL_get_SSL_CTX) contextOfConnection = nullptr;
    decltype(&CRYPTO_get_ex_new_index) newDataIndex = nullptr;
    bool isComplete = true;

    OpenSSL()
    {
        _find(verify, "X509_verify_cert");
        _find(certificateOfStore, "X509_STORE_CTX_get0_cert");
        _find(setError, "X509_STORE_CTX_set_error");
        _find(digest, "X509_digest");
        _find(sha256, "EVP_sha256");
        _find(checkHost, "X509_check_host");
        _find(checkAddress, "X509_check_ip_asc");
        _find(setVerifyCallback, "SSL_CTX_set_cert_verify_callback");
        _find(setData, "SSL_CTX_set_ex_data");
        _find(data, "SSL_CTX_get_ex_data");
        _find(contextOfConnection, "SSL_get_SSL_CTX");
        _find(newDataIndex, "CRYPTO_get_ex_new_index");
    }

    static const OpenSSL& shared()
    {
        static const OpenSSL functions;
        return functions;
    }

private:
    template <class Function>
    void _find(Function& function, const char* name)
    {
        function = reinterpret_cast<Function>(curl().OpenSSLFunction(name));
        isComplete = isComplete && function;
    }
};

} // namespace

/// What one connection has shown, and why it was accepted.
struct KRCertificateCheck::Shown {
    QString trusted;
    QByteArray host;
    QString fingerprint = {};
    bool isVouchedFor = false;

    static int dataIndex()
    {
        static const int index = OpenSSL::shared().newDataIndex(CRYPTO_EX_INDEX_SSL_CTX,
            0,
            nullptr,
            nullptr,
            nullptr,
            [](void*, void* data, CRYPTO_EX_DATA*, int, long, void*) {
                delete static_cast<std::shared_ptr<Shown>*>(data);
            });
        return index;
    }

    /// OpenSSL's; 1 when the certificate is accepted.
    static int verifyCallback(X509_STORE_CTX* store, void* self)
    {
        return static_cast<Shown*>(self)->_accepts(store) ? 1 : 0;
    }

private:
    [[nodiscard]] bool _accepts(X509_STORE_CTX* store)
    {
        const OpenSSL& functions = OpenSSL::shared();
        X509* const certificate = functions.certificateOfStore(store);
        std::array<unsigned char, EVP_MAX_MD_SIZE> bytes {};
        unsigned length = 0;
        if (!certificate || !functions.digest(certificate, functions.sha256(), bytes.data(), &length))
            return false;
        const QByteArrayView digest(bytes.data(), qsizetype(length));
        fingerprint = QString::fromLatin1(digest.toByteArray().toHex(':').toUpper());
        if (!trusted.isEmpty() && fingerprint == trusted) {
            functions.setError(store, X509_V_OK);
            return true;
        }
        isVouchedFor = functions.verify(store) == 1;
        // Elsewhere libcurl compares the names, afterwards.
        if (isVouchedFor && !trusted.isEmpty() && !_isMadeOutToHost(certificate)) {
            functions.setError(store, X509_V_ERR_HOSTNAME_MISMATCH);
            isVouchedFor = false;
        }
        return isVouchedFor;
    }

    [[nodiscard]] bool _isMadeOutToHost(X509* certificate) const
    {
        const OpenSSL& functions = OpenSSL::shared();
        constexpr int isNoAddress = -2;
        const int answer = functions.checkAddress(certificate, host.constData(), 0);
        if (answer != isNoAddress)
            return answer == 1;
        return functions.checkHost(certificate, host.constData(), size_t(host.size()), 0, nullptr) == 1;
    }
};

KRCertificateCheck::KRCertificateCheck(CURL* handle, const QUrl& url, const QString& trustedFingerprint)
    : m_handle(handle)
    , m_host(url.host(QUrl::FullyEncoded).toLatin1())
{
    if (!OpenSSL::shared().isComplete)
        return;
    curl().easySetOption(handle, CURLOPT_SSL_CTX_FUNCTION, &KRCertificateCheck::_contextCallback);
    curl().easySetOption(handle, CURLOPT_SSL_CTX_DATA, this);
    if (trustedFingerprint.isEmpty())
        return;
    m_trusted = trustedFingerprint;
    // libcurl would refuse another name after all, and with a resumed session nobody is asked. Connections
    // that do and do not compare names are kept apart by libcurl, so none of these serves who trusts nothing.
    curl().easySetOption(handle, CURLOPT_SSL_VERIFYHOST, 0L);
    curl().easySetOption(handle, CURLOPT_SSL_SESSIONID_CACHE, 0L);
    curl().easySetOption(handle, CURLOPT_PREREQFUNCTION, &KRCertificateCheck::_beforeRequestCallback);
    curl().easySetOption(handle, CURLOPT_PREREQDATA, this);
}

QString KRCertificateCheck::fingerprint() const
{
    return m_shown ? m_shown->fingerprint : QString();
}

int KRCertificateCheck::_contextCallback(CURL*, void* context, void* self)
{
    const OpenSSL& functions = OpenSSL::shared();
    auto* const check = static_cast<KRCertificateCheck*>(self);
    auto* const tls = static_cast<SSL_CTX*>(context);
    check->m_shown = std::make_shared<Shown>(Shown { check->m_trusted, check->m_host });
    auto* const kept = new std::shared_ptr<Shown>(check->m_shown);
    if (functions.setData(tls, Shown::dataIndex(), kept) != 1) {
        delete kept;
        return CURLE_OUT_OF_MEMORY;
    }
    functions.setVerifyCallback(tls, &Shown::verifyCallback, kept->get());
    return CURLE_OK;
}

int KRCertificateCheck::_beforeRequestCallback(void* self, char*, char*, int, int)
{
    const OpenSSL& functions = OpenSSL::shared();
    auto* const check = static_cast<KRCertificateCheck*>(self);
    const curl_tlssessioninfo* session = nullptr;
    curl().easyGetInfo(check->m_handle, CURLINFO_TLS_SSL_PTR, &session);
    const std::shared_ptr<Shown>* shown = nullptr;
    if (session && session->internals) {
        const SSL_CTX* const tls = functions.contextOfConnection(static_cast<SSL*>(session->internals));
        shown = static_cast<std::shared_ptr<Shown>*>(functions.data(tls, Shown::dataIndex()));
    }
    if (shown && ((*shown)->isVouchedFor || (*shown)->fingerprint == check->m_trusted))
        return CURL_PREREQFUNC_OK;
    check->m_hasRefusedOldConnection = shown && *shown != check->m_shown;
    return CURL_PREREQFUNC_ABORT;
}

#pragma once

#include <QString>

#include <memory>
#include <openssl/ssl.h>

/// What is wrong with a test server's certificate.
enum class KRTestCertificate { Good, Expired, OtherHost, UnknownAuthority };

using KRTestTLSContext = std::shared_ptr<SSL_CTX>;

/// A TLS server context with a certificate for 127.0.0.1 and localhost, signed by the tests' own authority.
KRTestTLSContext KRMakeTestTLSContext(KRTestCertificate kind);
/// The SHA-256 fingerprint of a context's certificate, in capitals with colons.
QString KRTestFingerprint(const KRTestTLSContext& context);
/// The PEM file of the tests' authority.
QString KRTestAuthorityFile();

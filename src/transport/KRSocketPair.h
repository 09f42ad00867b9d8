#pragma once

#include "transport/KRInputStream.h"

#include <memory>

/// The writing end of a socket; closes it when destroyed.
class KRSocketOutputStream {
public:
    explicit KRSocketOutputStream(int descriptor);
    KRSocketOutputStream(const KRSocketOutputStream&) = delete;
    KRSocketOutputStream& operator=(const KRSocketOutputStream&) = delete;
    ~KRSocketOutputStream();

    /// Answers the number of bytes written, -1 when the other end is gone. Waits while the socket is full.
    qint64 write(const char* bytes, qint64 length);

private:
    int m_descriptor;
};

struct KRSocketStreamPair {
    std::unique_ptr<KRInputStream> readStream;
    std::unique_ptr<KRSocketOutputStream> writeStream;
};

/// A connected pair of local stream sockets: what is written to the one is read from the other. Both streams
/// are null when the system has no sockets left; that is logged.
KRSocketStreamPair CFStreamCreatePairWithUNIXSocketPair();

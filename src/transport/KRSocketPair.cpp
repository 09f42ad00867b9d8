#include "transport/KRSocketPair.h"

#include "foundation/KRLog.h"

#include <sys/socket.h>
#include <unistd.h>

namespace {

class SocketInputStream final : public KRInputStream {
public:
    explicit SocketInputStream(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~SocketInputStream() override { ::close(m_descriptor); }

    qint64 read(char* buffer, qint64 capacity) override
    {
        return ::recv(m_descriptor, buffer, static_cast<size_t>(capacity), 0);
    }
    bool rewind() override { return false; }

private:
    int m_descriptor;
};

} // namespace

KRSocketOutputStream::KRSocketOutputStream(int descriptor)
    : m_descriptor(descriptor)
{
}

KRSocketOutputStream::~KRSocketOutputStream()
{
    ::close(m_descriptor);
}

qint64 KRSocketOutputStream::write(const char* bytes, qint64 length)
{
    return ::send(m_descriptor, bytes, static_cast<size_t>(length), MSG_NOSIGNAL);
}

KRSocketStreamPair CFStreamCreatePairWithUNIXSocketPair()
{
    int descriptors[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, descriptors) != 0) {
        KRLog(QStringLiteral("Unable to create socket pair"));
        return {};
    }
    return { std::make_unique<SocketInputStream>(descriptors[0]),
        std::make_unique<KRSocketOutputStream>(descriptors[1]) };
}

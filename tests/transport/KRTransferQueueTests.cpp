#include "KRTestRequest.h"
#include "support/KRTestServer.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRNetworkCache.h"

#include <dlfcn.h>
#include <netdb.h>
#include <semaphore>

namespace {

/// Something that threads wait for until it is opened.
class Gate {
public:
    void wait()
    {
        ++m_waiting;
        m_tickets.acquire();
    }
    void letOnePass() { m_tickets.release(); }
    void open() { m_tickets.release(1000); }
    /// How many have come to it.
    int waiting() const { return m_waiting; }

private:
    std::atomic<int> m_waiting = 0;
    std::counting_semaphore<> m_tickets { 0 };
};

constexpr char deadName[] = "dead.example";
constexpr char unknownName[] = "unknown.example";

// Never destroyed: a look-up may still wait for it when the process ends.
Gate& deadResolver()
{
    static Gate& gate = *new Gate;
    return gate;
}

std::vector<std::unique_ptr<KRTestRequest>> startRequests(const QUrl& url, int count)
{
    std::vector<std::unique_ptr<KRTestRequest>> requests;
    for (int number = 0; number < count; ++number) {
        requests.push_back(std::make_unique<KRTestRequest>(url));
        requests.back()->start();
    }
    return requests;
}

void beImpatient(KRHTTPTransportSettings& settings)
{
    settings.stallSeconds = 1;
}

} // namespace

// What libcurl's resolver threads call: one name is unknown, for another the answer never comes.
extern "C" __attribute__((visibility("default"))) int
getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result)
{
    if (node && std::strcmp(node, deadName) == 0) {
        deadResolver().wait();
        return EAI_AGAIN;
    }
    if (node && std::strcmp(node, unknownName) == 0)
        return EAI_NONAME;
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(node, service, hints, result);
}

TEST(KRTransferQueue, ADeadResolverHoldsUpNobodyElse)
{
    const KRTestTransportSettings impatient(beImpatient);
    KRTestServer server(KRTestServer::always(200, "fine"));
    KRTestRequest dead(QUrl(u"http://%1/"_s.arg(QLatin1String(deadName))));
    dead.start();
    ASSERT_TRUE(KRWaitUntil([] { return deadResolver().waiting() > 0; }));
    // It is given up while the look-up goes on, and the thread that gave it up serves others.
    ASSERT_TRUE(dead.wait());
    EXPECT_EQ(dead.errorText(), u"The server dead.example did not answer in time"_s);
    KRTestRequest alive(server.url());
    ASSERT_TRUE(alive.run());
    EXPECT_EQ(alive->data(), QByteArray("fine"));
    deadResolver().open();
    KRTestRequest unknown(QUrl(u"http://%1/"_s.arg(QLatin1String(unknownName))));
    ASSERT_TRUE(unknown.run());
    EXPECT_EQ(unknown.errorText(), u"The server unknown.example was not found"_s);
}

TEST(KRTransferQueue, PicturesLeavePlacesAndCommandsGoFirst)
{
    Gate gate;
    KRTestServer server([&](const KRTestServer::Request& request, auto& connection) {
        if (request.target.startsWith("/held"))
            gate.wait();
        connection.respond(200, "fine");
    });
    std::atomic<int> pictures = 0;
    for (int number = 0; number < 6; ++number)
        KRNetworkCache::request(server.url(u"/held/%1"_s.arg(number)),
            KRCallback<QByteArray>::withFunction([&](const KRResult<QByteArray>&) { ++pictures; }));
    ASSERT_TRUE(KRWaitUntil([&] { return gate.waiting() == 4; }));
    KRTestRequest post(server.url(u"/post"_s), u"POST"_s);
    ASSERT_TRUE(post.run()) << "avatars do not keep a post waiting";
    EXPECT_EQ(gate.waiting(), 4);

    // Now all places are taken, and who waits is served by kind.
    const auto data = startRequests(server.url(u"/held"_s), 4);
    ASSERT_TRUE(KRWaitUntil([&] { return gate.waiting() == 8; }));
    KRTestRequest later(server.url(u"/data"_s));
    KRTestRequest first(server.url(u"/command"_s), u"POST"_s);
    later.start();
    first.start();
    bool areQueued = false;
    performOnSharedBackgroundThread([&] { KRRunLoop::main().post([&] { areQueued = true; }); });
    ASSERT_TRUE(KRWaitUntil([&] { return areQueued; }));
    EXPECT_EQ(gate.waiting(), 8);
    const int before = server.requestCount();
    gate.letOnePass();
    ASSERT_TRUE(first.wait() && later.wait());
    const QList<KRTestServer::Request> served = server.requests().sliced(before);
    EXPECT_EQ(served.at(0).target, QByteArray("/command"));
    EXPECT_EQ(served.at(1).target, QByteArray("/data")) << "pictures come last";
    gate.open();
    for (const auto& request : data)
        EXPECT_TRUE(request->wait());
    EXPECT_TRUE(KRWaitUntil([&] { return pictures == 6; }));
}

TEST(KRTransferQueue, WaitingForAPlaceEndsLikeWaitingForAnAnswer)
{
    Gate gate;
    KRTestServer server([&](const auto&, auto& connection) {
        gate.wait();
        connection.respond(200, "fine");
    });
    const auto served = startRequests(server.url(), 8);
    ASSERT_TRUE(KRWaitUntil([&] { return gate.waiting() == 8; }));
    const KRTestTransportSettings impatient(beImpatient);
    for (const auto& request : startRequests(server.url(), 3)) {
        ASSERT_TRUE(request->wait());
        EXPECT_EQ(request->errorText(), u"The server 127.0.0.1 did not answer in time"_s);
        EXPECT_EQ(request->callbackCount(), 1);
    }
    EXPECT_EQ(server.connectionCount(), 8);
    // Who got a place after all waits no more: only the server's silence ends it.
    KRTestRequest next(server.url());
    next.start();
    gate.letOnePass();
    ASSERT_TRUE(KRWaitUntil([&] { return gate.waiting() == 9; }));
    ASSERT_TRUE(next.wait());
    EXPECT_EQ(next.callbackCount(), 1);
    gate.open();
    for (const auto& request : served) {
        ASSERT_TRUE(request->wait());
        EXPECT_EQ(request->request()->data(), QByteArray("fine"));
    }
}

#include "model/records/TwitterUser.h"
#include "support/KRTest.h"
#include "support/KRTestServer.h"
#include "transport/KRBackgroundThread.h"

namespace {

// A picture is any text but "bad".
struct FakeImage : TwitterProfileImage {
    QByteArray content;
};

std::atomic<bool> s_decodedElsewhere = false;

TwitterProfileImagePtr makeFakeImage(const QByteArray& data)
{
    if (!KRBackgroundThread::isCurrentThread())
        s_decodedElsewhere = true;
    if (data == "bad")
        return nullptr;
    auto image = std::make_shared<FakeImage>();
    image->content = data;
    return image;
}

class ProfileImage : public testing::Test {
protected:
    ProfileImage() { TwitterUser::setProfileImageMaker(makeFakeImage); }

    TwitterUserPtr userWithImage(const QString& target)
    {
        auto user = std::make_shared<TwitterUser>();
        user->setProfileImageURL(m_server.url(target));
        return user;
    }

    KRTestServer m_server { [](const KRTestServer::Request& request, KRTestServer::Connection& connection) {
        if (request.target == "/missing.png")
            connection.respond(404, "nothing");
        else
            connection.respond(200, request.target == "/bad.png" ? "bad" : "picture");
    } };
};

TEST_F(ProfileImage, IsLoadedOnceOffTheMainThreadAndAnnounced)
{
    const TwitterUserPtr user = userWithImage(u"/good.png"_s);
    int notifications = 0;
    bool wasOnMainThread = true;
    const KRObservation observation = KRTestObserve<TwitterUserDidUpdateNotification>([&](const auto&) {
        ++notifications;
        wasOnMainThread = wasOnMainThread && KRRunLoop::isMainThread();
    });
    EXPECT_FALSE(user->profileImage());
    EXPECT_FALSE(user->profileImage());
    EXPECT_TRUE(user->isLoadingProfileImage());
    ASSERT_TRUE(KRWaitUntil([&] { return user->profileImage() != nullptr; }));
    EXPECT_EQ(std::static_pointer_cast<const FakeImage>(user->profileImage())->content, "picture");
    EXPECT_EQ(notifications, 1);
    EXPECT_TRUE(wasOnMainThread);
    EXPECT_EQ(m_server.requestCount(), 1);

    // Cached bytes are decoded on the background thread too.
    const TwitterUserPtr again = userWithImage(u"/good.png"_s);
    EXPECT_FALSE(again->profileImage());
    ASSERT_TRUE(KRWaitUntil([&] { return again->profileImage() != nullptr; }));
    EXPECT_EQ(m_server.requestCount(), 1);
    EXPECT_FALSE(s_decodedElsewhere);

    // A merge takes the picture when there is none, and leaves the one there is.
    const TwitterUserPtr named = userWithImage(u"/other.png"_s);
    again->setUsername(u"bob"_s);
    named->setUsername(u"bob"_s);
    again->setLastUpdated(named->lastUpdated().addSecs(1));
    named->assimilateUser(*again);
    EXPECT_EQ(named->profileImage(), again->profileImage());
    user->setUsername(u"bob"_s);
    again->setLastUpdated(again->lastUpdated().addSecs(1));
    const TwitterProfileImagePtr before = user->profileImage();
    user->assimilateUser(*again);
    EXPECT_EQ(user->profileImage(), before);
    EXPECT_NE(before, again->profileImage());
}

TEST_F(ProfileImage, AFailureIsNotTriedAgain)
{
    const TwitterUserList users { userWithImage(u"/missing.png"_s), userWithImage(u"/bad.png"_s) };
    for (const TwitterUserPtr& user : users)
        EXPECT_FALSE(user->profileImage());
    ASSERT_TRUE(KRWaitUntil([&] { return m_server.requestCount() == 2; }));
    // A picture asked for later has come: so have the answers before it.
    const TwitterUserPtr later = userWithImage(u"/later.png"_s);
    EXPECT_FALSE(later->profileImage());
    ASSERT_TRUE(KRWaitUntil([&] { return later->profileImage() != nullptr; }));
    for (const TwitterUserPtr& user : users)
        EXPECT_FALSE(user->profileImage());
    EXPECT_EQ(m_server.requestCount(), 3);
}

TEST_F(ProfileImage, WithoutAnAddressThereIsALineInTheLog)
{
    KRTestLog log;
    const auto user = std::make_shared<TwitterUser>();
    EXPECT_FALSE(user->profileImage());
    EXPECT_FALSE(user->profileImage());
    EXPECT_EQ(log.lines(), QStringList(user->description() + u" has no profile image?"_s));
}

} // namespace

#include "LocalServiceFixture.h"

#include <gmock/gmock.h>
#include <sstream>

using namespace testing;
using RestTest = LocalServiceTest;
using std::to_string;

static const std::string home = "/statuses/home_timeline.xml";

TEST_F(RestTest, ListsArePagedTheSameWayEverywhere)
{
    std::istringstream lists(
        "/statuses/home_timeline.xml /statuses/replies.xml /statuses/public_timeline.xml "
        "/favorites/alice.xml "
        "/statuses/user_timeline.xml?screen_name=bob /direct_messages.xml /direct_messages/sent.xml");
    for (std::string path; lists >> path;) {
        SCOPED_TRACE(path);
        Caller caller = alice();
        const std::string element = path.starts_with("/direct") ? "direct_message" : "status";
        const std::string base = path + (path.find('?') == std::string::npos ? "?" : "&");
        const auto ids = [&](const std::string& query) { return caller.get(base + query).ids(element); };

        const auto plain = caller.get(path).ids(element);
        ASSERT_EQ(plain.size(), 20U);
        EXPECT_TRUE(std::is_sorted(plain.rbegin(), plain.rend()));
        EXPECT_EQ(ids("page=0"), plain);
        EXPECT_EQ(ids("page=1"), plain);

        EXPECT_THAT(ids("count=3&page=2"), ElementsAre(plain[3], plain[4], plain[5]));
        EXPECT_THAT(ids("count=2&max_id=" + to_string(plain[7])), ElementsAre(plain[7], plain[8]));
        EXPECT_THAT(ids("since_id=" + to_string(plain[3])), ElementsAre(plain[0], plain[1], plain[2]));
        EXPECT_THAT(ids("since_id=" + to_string(plain[3]) + "&max_id=" + to_string(plain[1])),
            ElementsAre(plain[1], plain[2]));
        EXPECT_THAT(ids("since_id=" + to_string(plain[0])), IsEmpty());
        EXPECT_THAT(ids("since_id=99999999999999999999999999"), IsEmpty());
        EXPECT_THAT(ids("page=99999999999999999999999999"), IsEmpty());
        EXPECT_EQ(ids("since_id=&max_id=x&count=-5&page=two"), plain);
    }
    EXPECT_EQ(alice().get(home + "?count=100000").ids().size(), 200U);
    EXPECT_EQ(alice().get("/api" + home + "?").ids(), alice().get(home).ids());
}

TEST_F(RestTest, CredentialsAreAskedForAndChecked)
{
    Caller impostor(service(), "alice", "looking glass");
    std::istringstream readers("/statuses/home_timeline.xml /statuses/replies.xml /direct_messages.xml "
                               "/direct_messages/sent.xml /account/verify_credentials.xml");
    for (std::string path; readers >> path;) {
        for (Caller caller : { nobody(), impostor, Caller(service(), "al'ice", "x") }) {
            const Reply reply = caller.get(path);
            EXPECT_EQ(reply.status, 401) << path;
            EXPECT_EQ(reply.error(), "Could not authenticate you.");
            EXPECT_EQ(reply.text("hash", "request"), path);
            EXPECT_THAT(reply.headers.find("WWW-Authenticate")->second, StartsWith("Basic realm=\""));
        }
    }
    std::istringstream writers(
        "/statuses/update.xml /statuses/destroy/1.xml /direct_messages/new.xml /favorites/create/1.xml "
        "/favorites/destroy/1.xml /friendships/create.xml?screen_name=bob /friendships/destroy/bob.xml");
    for (std::string path; writers >> path;)
        EXPECT_EQ(nobody().post(path).status, 401) << path;
    EXPECT_EQ(impostor.get("/statuses/public_timeline.xml").status, 401)
        << "wrong credentials are never ignored";
    EXPECT_EQ(nobody().get("/statuses/public_timeline.xml").status, 200);
    const Reply verified = Caller(service(), "ALICE", "wonderland").get("/account/verify_credentials.xml");
    EXPECT_EQ(verified.text("user", "screen_name"), "alice");
}

TEST_F(RestTest, UpdateShowsUpInEveryPlaceItBelongsTo)
{
    const std::string text = "Tea & <cake> \"at\" five, 👩‍👩‍👧 @bob #täglich שלום";
    const long long id = alice().update("  " + text + "\r\n");
    EXPECT_EQ(alice().get(home).ids().front(), id);
    EXPECT_EQ(bob().get(home).ids().front(), id);
    EXPECT_EQ(bob().get("/statuses/replies.xml").ids().front(), id);
    EXPECT_EQ(nobody().get("/statuses/user_timeline.xml?screen_name=alice").ids().front(), id);
    EXPECT_EQ(nobody().get("/statuses/public_timeline.xml").ids().front(), id);

    const Reply shown = nobody().get("/statuses/show/" + to_string(id) + ".xml");
    EXPECT_EQ(shown.text("status", "text"), text);
    EXPECT_EQ(shown.text("status", "source"), "pelinor");
    EXPECT_EQ(shown.text("user", "screen_name"), "alice");
    EXPECT_THAT(shown.body, HasSubstr("Tea &amp; &lt;cake&gt; &quot;at&quot; five"));
    EXPECT_THAT(shown.body, HasSubstr("<in_reply_to_status_id></in_reply_to_status_id>"));

    const long long answer = bob().update("@alice Cake? Where?", id);
    const Reply reply = alice().get("/statuses/replies.xml?count=1");
    EXPECT_THAT(reply.ids(), ElementsAre(answer));
    EXPECT_EQ(reply.text("status", "in_reply_to_status_id"), to_string(id));
    EXPECT_EQ(reply.text("status", "in_reply_to_screen_name"), "alice");
}

TEST_F(RestTest, UpdateRefusesWhatCannotBePosted)
{
    std::string exactly140;
    for (int i = 0; i < 140; ++i)
        exactly140 += "é";
    const char* const nothing = "Client must provide a 'status' parameter with a value.";
    const char* const tooLong = "Maximum notice size is 140 characters.";
    const char* const broken = "The request is not valid UTF-8.";
    const struct {
        const char* what;
        std::string body;
        int status;
        const char* error;
    } cases[] = {
        { "no text", "", 400, nothing },
        { "white space", "status=+%0A%09", 400, nothing },
        { "140 characters", "status=" + exactly140, 200, "" },
        { "141 characters", "status=" + exactly140 + "x", 413, tooLong },
        { "broken UTF-8", "status=caf%C3", 400, broken },
        { "surrogates", "status=%ED%A0%80", 400, broken },
        { "unknown parent", "status=hm&in_reply_to_status_id=999999", 404, "Parent notice not found." },
    };
    for (const auto& c : cases) {
        const Reply reply
            = alice().postBody("/statuses/update.xml", c.body, "application/x-www-form-urlencoded");
        EXPECT_EQ(reply.status, c.status) << c.what;
        EXPECT_EQ(reply.error(), c.error) << c.what;
    }

    EXPECT_EQ(alice().post("/statuses/update.xml", { { "status", "twice" } }).status, 200);
    EXPECT_EQ(bob().post("/statuses/update.xml", { { "status", "twice" } }).status, 200);
    const Reply again = alice().post("/statuses/update.xml", { { "status", " twice " } });
    EXPECT_EQ(again.status, 400);
    EXPECT_THAT(again.error(), StartsWith("Too many duplicate messages too quickly"));
    EXPECT_EQ(alice().get("/statuses/update.xml?status=x").status, 405);
    EXPECT_EQ(alice().post(home).status, 405);
    EXPECT_EQ(alice().get("/statuses/home_timeline.foo").status, 404);
}

TEST_F(RestTest, ProtectedPostsAreForFriendsOnly)
{
    Caller priya(service(), "priya", "fourteenacross");
    const long long id = priya.update("only for friends @bob");
    const std::string show = "/statuses/show/" + to_string(id) + ".xml";
    const std::string timeline = "/statuses/user_timeline.xml?screen_name=priya";
    EXPECT_EQ(alice().get(show).status, 200);
    EXPECT_EQ(alice().get(timeline).ids().front(), id);
    for (Caller stranger : { bob(), nobody() }) {
        EXPECT_EQ(stranger.get(show).status, 403);
        EXPECT_EQ(stranger.get(timeline).error(),
            "This stream is protected and only authorized subscribers may see its contents.");
        const Reply profile = stranger.get("/users/show.xml?screen_name=priya");
        EXPECT_EQ(profile.text("user", "protected"), "true");
        EXPECT_THAT(profile.body, Not(HasSubstr("only for friends")));
        EXPECT_THAT(stranger.get("/statuses/public_timeline.xml").ids(), Not(Contains(id)));
        EXPECT_THAT(stranger.get("/priya/status/" + to_string(id)).body, Not(HasSubstr("only for")));
    }
    EXPECT_THAT(bob().get("/statuses/replies.xml").ids(), Not(Contains(id)));
    EXPECT_EQ(bob().post("/favorites/create/" + to_string(id) + ".xml").status, 403);
}

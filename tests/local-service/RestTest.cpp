#include "LocalServiceFixture.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <sstream>
#include <thread>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

using RestTest = LocalServiceTest;

const std::string home = "/statuses/home_timeline.xml";

std::string number(long long value)
{
    return std::to_string(value);
}

} // namespace

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
        EXPECT_THAT(ids("count=2&max_id=" + number(plain[7])), ElementsAre(plain[7], plain[8]));
        EXPECT_THAT(ids("since_id=" + number(plain[3])), ElementsAre(plain[0], plain[1], plain[2]));
        EXPECT_THAT(ids("since_id=" + number(plain[3]) + "&max_id=" + number(plain[1])),
            ElementsAre(plain[1], plain[2]));
        EXPECT_THAT(ids("since_id=" + number(plain[0])), IsEmpty());
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

    const Reply shown = nobody().get("/statuses/show/" + number(id) + ".xml");
    EXPECT_EQ(shown.text("status", "text"), text);
    EXPECT_EQ(shown.text("status", "source"), "pelinor");
    EXPECT_EQ(shown.text("user", "screen_name"), "alice");
    EXPECT_THAT(shown.body, HasSubstr("Tea &amp; &lt;cake&gt; &quot;at&quot; five"));
    EXPECT_THAT(shown.body, HasSubstr("<in_reply_to_status_id></in_reply_to_status_id>"));

    const long long answer = bob().update("@alice Cake? Where?", id);
    const Reply reply = alice().get("/statuses/replies.xml?count=1");
    EXPECT_THAT(reply.ids(), ElementsAre(answer));
    EXPECT_EQ(reply.text("status", "in_reply_to_status_id"), number(id));
    EXPECT_EQ(reply.text("status", "in_reply_to_screen_name"), "alice");
    EXPECT_EQ(reply.text("status", "statusnet:conversation_id"),
        shown.text("status", "statusnet:conversation_id"));
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
        { "far too long", "status=" + std::string(300'000, 'x'), 413, tooLong },
        { "broken UTF-8", "status=caf%C3", 400, broken },
        { "surrogates", "status=%ED%A0%80", 400, broken },
        { "unknown parent", "status=hm&in_reply_to_status_id=999999", 404, "Parent notice not found." },
        { "parent of nonsense", "status=hm&in_reply_to_status_id=-1", 404, "Parent notice not found." },
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

    const Reply stripped
        = alice().post("/statuses/update.xml", { { "status", "be\x01ll\x0b \xef\xbf\xbf!" } });
    EXPECT_EQ(stripped.text("status", "text"), "bell !");
    EXPECT_EQ(alice().get("/statuses/update.xml?status=x").status, 405);
    EXPECT_EQ(alice().post(home).status, 405);
    EXPECT_EQ(alice().get("/statuses/home_timeline.foo").status, 404);
}

TEST_F(RestTest, DestroyedPostsAreGone)
{
    const long long id = alice().update("soon gone @bob");
    EXPECT_EQ(bob().post("/favorites/create/" + number(id) + ".xml").status, 200);
    EXPECT_EQ(bob().post("/statuses/destroy/" + number(id) + ".xml").status, 403);
    const Reply destroyed = alice().post("/statuses/destroy/" + number(id) + ".xml");
    EXPECT_EQ(destroyed.status, 200);
    EXPECT_EQ(destroyed.text("status", "text"), "soon gone @bob");

    const std::string show = "/statuses/show/" + number(id) + ".xml";
    const Reply gone = alice().get(show);
    EXPECT_EQ(gone.status, 410);
    EXPECT_EQ(gone.error(), "Notice deleted.");
    EXPECT_EQ(gone.text("hash", "request"), show);
    EXPECT_EQ(alice().post("/statuses/destroy/" + number(id) + ".xml").status, 410);
    EXPECT_THAT(alice().get(home).ids(), Not(Contains(id)));
    EXPECT_THAT(bob().get("/statuses/replies.xml").ids(), Not(Contains(id)));
    EXPECT_THAT(nobody().get("/favorites/bob.xml").ids(), Not(Contains(id)));
    const httplib::Params late { { "status", "to the void" }, { "in_reply_to_status_id", number(id) } };
    EXPECT_EQ(bob().post("/statuses/update.xml", late).status, 404);
    EXPECT_EQ(alice().get("/statuses/show/999999.xml").error(), "No such notice.");
    EXPECT_EQ(alice().get("/statuses/show/x%27%20OR%201=1--.xml").status, 404);
}

TEST_F(RestTest, FavoritesAreMarkedCountedAndListed)
{
    const long long id = bob().update("worth a star");
    const auto favorited = [&](Caller caller) {
        return caller.get("/statuses/show/" + number(id) + ".xml").text("status", "favorited");
    };
    const auto countOfAlice
        = [&] { return alice().get("/users/show.xml?screen_name=alice").text("user", "favourites_count"); };
    const std::string before = countOfAlice();

    const std::string create = "/favorites/create/" + number(id) + ".xml";
    const std::string destroy = "/favorites/destroy/" + number(id) + ".xml";
    EXPECT_EQ(alice().post(create).text("status", "favorited"), "true");
    EXPECT_EQ(favorited(alice()), "true");
    EXPECT_EQ(favorited(bob()), "false");
    EXPECT_EQ(favorited(nobody()), "false");
    EXPECT_EQ(std::stoi(countOfAlice()), std::stoi(before) + 1);
    EXPECT_EQ(alice().post(create).error(), "You have already favorited this!");
    EXPECT_EQ(nobody().get("/favorites/alice.xml").ids().front(), id);
    EXPECT_EQ(nobody().get("/favorites/1.xml").ids(), nobody().get("/favorites/alice.xml").ids());
    EXPECT_EQ(nobody().get("/favorites/nobody.xml").status, 404);
    EXPECT_EQ(alice().post(destroy).text("status", "favorited"), "false");
    EXPECT_EQ(alice().post(destroy).error(), "That status is not a favorite.");
    EXPECT_EQ(countOfAlice(), before);
}

TEST_F(RestTest, FollowingChangesTimelinesCountsAndLists)
{
    const auto exists = [&](const std::string& a, const std::string& b) {
        const Reply reply = nobody().get("/friendships/exists.xml?user_a=" + a + "&user_b=" + b);
        const std::string answer = reply.body.substr(reply.body.find('\n') + 1);
        EXPECT_THAT(answer, testing::AnyOf("<friends>true</friends>\n", "<friends>false</friends>\n"));
        return answer.starts_with("<friends>true");
    };
    EXPECT_FALSE(exists("alice", "felix"));
    const long long id = felix().update("is anyone listening");
    EXPECT_THAT(alice().get(home).ids(), Not(Contains(id)));

    const Reply followed = alice().post("/friendships/create.xml?screen_name=felix");
    EXPECT_EQ(followed.text("user", "screen_name"), "felix");
    EXPECT_EQ(followed.text("user", "following"), "true");
    EXPECT_TRUE(exists("alice", "felix"));
    const std::string felixID = followed.text("user", "id");
    EXPECT_TRUE(exists("1", felixID));
    EXPECT_EQ(alice().get(home).ids().front(), id);
    EXPECT_EQ(alice().get("/statuses/friends.xml").text("user", "screen_name"), "felix")
        << "the newest comes first";
    EXPECT_THAT(nobody().get("/statuses/followers.xml?user_id=" + felixID).texts("user", "screen_name"),
        Contains("alice"));
    EXPECT_EQ(alice().post("/friendships/create.xml?user_id=" + felixID).error(),
        "Could not follow user: felix is already on your list.");

    EXPECT_EQ(alice().post("/friendships/destroy/" + felixID + ".xml").text("user", "following"), "false");
    EXPECT_FALSE(exists("alice", "felix"));
    EXPECT_THAT(alice().get(home).ids(), Not(Contains(id)));
    EXPECT_EQ(alice().post("/friendships/destroy/felix.xml").status, 403);
    EXPECT_EQ(alice().post("/friendships/create.xml?user_id=99999").error(),
        "Could not follow user: profile not found.");
    EXPECT_EQ(alice().post("/friendships/create.xml").status, 403);
    EXPECT_EQ(alice().post("/friendships/create.xml?screen_name=alice").status, 403);
}

TEST_F(RestTest, ProtectedPostsAreForFriendsOnly)
{
    Caller priya(service(), "priya", "fourteenacross");
    const long long id = priya.update("only for friends @bob");
    const std::string show = "/statuses/show/" + number(id) + ".xml";
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
        EXPECT_THAT(stranger.get("/priya/status/" + number(id)).body, Not(HasSubstr("only for")));
    }
    EXPECT_THAT(bob().get("/statuses/replies.xml").ids(), Not(Contains(id)));
    EXPECT_EQ(bob().post("/favorites/create/" + number(id) + ".xml").status, 403);

    // Following somebody protected only asks.
    EXPECT_EQ(bob().post("/friendships/create.xml?screen_name=priya").text("user", "following"), "false");
    EXPECT_EQ(bob().get(show).status, 403);
    EXPECT_EQ(bob().post("/friendships/create.xml?screen_name=priya").status, 403);
    EXPECT_EQ(bob().post("/friendships/destroy/priya.xml").status, 200);
}

TEST_F(RestTest, MessagesGoBetweenFriendsOnly)
{
    const auto send = [](const std::string& recipient, const std::string& text) {
        httplib::Params given { { "user", recipient }, { "text", text } };
        std::erase_if(given, [](const auto& one) { return one.second.empty(); });
        return alice().post("/direct_messages/new.xml", given);
    };
    const Reply sent = send("2", "psst & <hush>");
    ASSERT_EQ(sent.status, 200);
    EXPECT_EQ(sent.text("direct_message", "text"), "psst & <hush>");
    EXPECT_EQ(sent.text("recipient", "screen_name"), "bob");
    const long long id = sent.ids("direct_message").front();
    EXPECT_EQ(bob().get("/direct_messages.xml").ids("direct_message").front(), id);
    EXPECT_THAT(alice().get("/direct_messages.xml").ids("direct_message"), Not(Contains(id)));

    const char* const noFriend = "Cannot send direct messages to users who aren't your friend.";
    const struct {
        const char* recipient;
        std::string text;
        int status;
        const char* error;
    } refusals[] = {
        { "felix", "hello", 403, noFriend },
        { "weatherbell", "hello", 403, noFriend },
        { "nosuch", "hello", 404, "Recipient user not found." },
        { "", "hello", 404, "Recipient user not found." },
        { "bob", "", 406, "No message text!" },
        { "bob", std::string(141, 'x'), 413, "That's too long. Maximum message size is 140 characters." },
    };
    for (const auto& c : refusals) {
        const Reply reply = send(c.recipient, c.text);
        EXPECT_EQ(reply.status, c.status);
        EXPECT_EQ(reply.error(), c.error);
    }
}

TEST_F(RestTest, ManyConnectionsAtOnceSeeEveryPostOnce)
{
    constexpr int writers = 8;
    constexpr int postsEach = 6;
    const long long before = alice().get(home).ids().front();
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([writer] {
            Caller caller = writer % 2 ? alice() : bob();
            for (int i = 0; i < postsEach; ++i) {
                caller.update("post " + std::to_string(i) + " of " + std::to_string(writer));
                EXPECT_EQ(caller.get(home + "?count=50").status, 200);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(alice().get(home + "?count=200&since_id=" + number(before)).ids().size(), writers * postsEach);
}

TEST_F(RestTest, AnswersAreCompressedForWhoAsks)
{
    httplib::Client plain("127.0.0.1", service().running().httpPort);
    plain.set_decompress(true);
    const std::string path = "/statuses/user_timeline.xml?screen_name=bob";
    const auto compressed = plain.Get(path, httplib::Headers { { "Accept-Encoding", "gzip" } });
    ASSERT_TRUE(compressed);
    EXPECT_EQ(compressed->get_header_value("Content-Encoding"), "gzip");
    const auto bare = plain.Get(path, httplib::Headers { { "Accept-Encoding", "identity" } });
    ASSERT_TRUE(bare);
    EXPECT_FALSE(bare->has_header("Content-Encoding"));
    EXPECT_EQ(compressed->body, bare->body);
    EXPECT_LT(std::stoul(compressed->get_header_value("Content-Length")), bare->body.size() / 4);
}

TEST_F(RestTest, PeopleAreFoundAndMissed)
{
    EXPECT_EQ(nobody().get("/users/show.xml?screen_name=quiet_owl").text("user", "name"), "");
    EXPECT_EQ(nobody().get("/users/show.xml?user_id=2").text("user", "screen_name"), "bob");
    EXPECT_THAT(nobody().get("/users/show.xml?screen_name=dave").text("user", "profile_image_url"),
        HasSubstr("default-avatar"));
    EXPECT_EQ(alice().get("/users/show.xml").text("user", "screen_name"), "alice");
    std::istringstream missing(
        "/users/show.xml?screen_name=nosuch /users/show.xml?user_id=0 /users/show.xml "
        "/statuses/followers.xml "
        "/statuses/user_timeline.xml?screen_name=nosuch /statuses/friends.xml?user_id=77777");
    for (std::string path; missing >> path;)
        EXPECT_EQ(nobody().get(path).status, 404) << path;
    EXPECT_EQ(nobody().get("/users/show.xml?screen_name=%FF").status, 400);
    EXPECT_EQ(nobody().get("/friendships/exists.xml?user_a=alice").status, 400);
    EXPECT_EQ(nobody().get("/account/rate_limit_status.xml").text("hash", "hourly-limit"), "150");
    EXPECT_EQ(nobody().get("/statusnet/config.xml").text("site", "textlimit"), "140");
}

TEST_F(RestTest, PortraitsAndPagesAnswerToTheLinksOfTheDocuments)
{
    httplib::Client plain("127.0.0.1", service().running().httpPort);
    const std::string base = "http://127.0.0.1:" + std::to_string(service().running().httpPort);
    const Reply people = nobody().get("/statuses/followers.xml?screen_name=alice&count=200");
    auto links = people.texts("user", "profile_image_url");
    const auto originals = people.texts("user", "profile_image_url_original");
    links.insert(links.end(), originals.begin(), originals.end());
    ASSERT_GT(links.size(), 20U);
    for (const std::string& link : links) {
        ASSERT_THAT(link, StartsWith(base));
        const auto picture = plain.Get(link.substr(base.size()));
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->status, 200) << link;
        EXPECT_THAT(picture->body, StartsWith("\x89PNG")) << link;
    }
    EXPECT_EQ(plain.Get("/avatar/..%2f..%2fservice.sqlite.png")->status, 404);
    EXPECT_EQ(plain.Get("/avatar/nosuch_normal.png")->status, 404);

    const long long id = alice().update("a page of its own <script>alert(1)</script>");
    const auto page = plain.Get("/alice/status/" + number(id));
    EXPECT_EQ(page->status, 200);
    EXPECT_THAT(page->body, HasSubstr("&lt;script&gt;"));
    EXPECT_THAT(page->body, Not(HasSubstr("<script>")));
}

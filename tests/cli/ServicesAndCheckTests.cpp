#include "KRTestCLI.h"
#include "cli/ServerCheckRules.h"
#include "support/KRTestSite.h"
#include "transport/KRHTTPConnection.h"

#include <QRegularExpression>

namespace {

class ServiceCommands : public KRTestCLI {
protected:
    QByteArray fileWith(const QByteArray& content) const { return KRTestFile(m_folder, content).toUtf8(); }

    /// The option that names a table of hosts with these lines.
    QByteArray servicesWith(const QByteArray& lines) const
    {
        return "--services " + fileWith("[ServiceHosts]\n" + lines) + ' ';
    }

    /// The outcomes of a run of "check --json", "NAME: OUTCOME" in the order of their names.
    static QStringList outcomesIn(const Outcome& run)
    {
        QStringList outcomes;
        for (const QJsonObject& object : run.objects())
            outcomes += object.value(u"check").toString() + u": "_s + object.value(u"outcome").toString();
        outcomes.sort();
        return outcomes;
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ServiceCommands, LinksBecomeShortAndLongAgain)
{
    const QByteArray target = "http://example.org/a_(b)?x=1&y=2#z";
    for (const QByteArray service : { "", "bitly", "tinyurl", "isgd", "trim", "diggbar" }) {
        SCOPED_TRACE(service.constData());
        const QByteArray shorten
            = "shorten '" + target + (service.isEmpty() ? "'" : "' --service " + service);
        const QByteArray link = valueOf(shorten, u"url");
        EXPECT_EQ(alice(shorten).output, link + '\n');
        // DiggBar's links are not among the known ones.
        EXPECT_EQ(alice("shorten " + link).errors.contains("Already shortened"), service != "diggbar");
        for (const char* option : { "", " --service bitly", " --service longurl" })
            EXPECT_EQ(valueOf("expand " + link + option, u"url"), target);
    }
    EXPECT_TRUE(alice("shorten '" + target + "' --service longurl").errors.contains("longurl"));
    const Outcome unknown = alice("expand x --service tinyurl");
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(unknown.errors.contains("bitly, longurl\n")) << unknown.errors.toStdString();
    const Outcome noAddress = alice("shorten 'no address'");
    EXPECT_TRUE(noAddress.errors.startsWith("com.kestrin.bitly-parsing-error -1: The answer"))
        << noAddress.errors.toStdString();
    EXPECT_EQ(alice("timeline --service bitly").exitCode, 2);
}

TEST_F(ServiceCommands, FilesAndTextsGoToTheirServices)
{
    const QByteArray picture = fileWith("\xff\xd8\xff\xe0 a picture");
    QByteArrayList links;
    for (const char* service : { "yfrog", "twitpic", "twitgoo", "posterous", "imgly", "pixim" })
        links.append(valueOf("upload " + picture + " --service " + service, u"url"));
    EXPECT_EQ(QSet(links.begin(), links.end()).size(), 6);
    const QByteArray movie = fileWith(QByteArray("\0\0\0\x14"
                                                 "ftypqt  ",
                                          12)
        + QByteArray(5000, '\1'));
    EXPECT_TRUE(alice("upload " + movie).output.endsWith("z\n"));
    EXPECT_TRUE(alice("upload " + movie + " --service imgly").errors.contains("Movies"));

    const QByteArray text = QByteArray("w\xc3\xb6rt & <x> ").repeated(50);
    const QJsonObject stored = objectsOf("longpost -", text).value(0);
    EXPECT_TRUE(stored.value(u"content").toString().endsWith(stored.value(u"shortLink").toString()));
    EXPECT_EQ(alice("shrink 'Thanks to you, see later'").output, QByteArray("thx 2 u, c l8r\n"));
    EXPECT_EQ(valueOf("shrink 'Thanks to you, see later'", u"difference"), "10");
}

TEST_F(ServiceCommands, WhatIsNotSetUpIsAnErrorAtOnce)
{
    const QByteArray services = servicesWith("RESTHost=127.0.0.1:1\n");
    const std::pair<const char*, const char*> cases[] = {
        { "shorten http://example.org/", "BitlyAPIHost" },
        { "shorten http://example.org/ --service isgd", "IsGdAPIHost" },
        { "expand http://example.org/", "ExpansionAPIHost" },
        { "expand http://example.org/ --service longurl", "LongURLAPIHost" },
        { "upload /etc/hostname", "YFrogAPIHost" },
        { "longpost text", "TwitlongerAPIHost" },
        { "shrink text", "TweetshrinkAPIHost" },
    };
    for (const auto& [arguments, word] : cases) {
        const Outcome outcome = run(services + arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_TRUE(outcome.errors.startsWith("com.kestrin.pelinor -1: ") && outcome.errors.contains(word))
            << outcome.errors.toStdString();
    }
    EXPECT_TRUE(alice("upload /no/such/file").errors.contains("cannot be read"));
}

TEST_F(ServiceCommands, CheckOfTheLocalServiceFindsAllInOrder)
{
    const QByteArray before = alice("--json user alice --count 5").output;
    const Outcome reading = alice("--json check");
    EXPECT_EQ(reading.exitCode, 0) << reading.errors.toStdString();
    const QStringList outcomes = outcomesIn(reading);
    EXPECT_EQ(outcomes.size(), 19);
    // Search is spoken to over plain http, and the last line is the verdict.
    EXPECT_EQ(QStringList(outcomes.filter(QRegularExpression(u"(?<!: works)$"_s))).join(u'\n'),
        u": \ndeleting: not tried\nposting: not tried\ntls of search: differs"_s);
    EXPECT_EQ(reading.objects().last().value(u"usable"), true);

    const QStringList written = outcomesIn(alice("--json check --write"));
    EXPECT_TRUE(written.contains(u"posting: works"_s) && written.contains(u"deleting: works"_s));
    EXPECT_EQ(alice("--json user alice --count 5").output, before);
    const Outcome plain = alice("check");
    EXPECT_TRUE(plain.output.contains("works     sign-in         Signed in as alice\n"));
    EXPECT_TRUE(plain.output.endsWith("Pelinor can be used with this server.\n"));

    const Outcome nobody = run(serviceOption() + authorityOption() + "--json check");
    EXPECT_EQ(nobody.exitCode, 1);
    EXPECT_TRUE(nobody.objects().last().value(u"usable").isNull()) << "nobody knows";

    const Outcome refused = runAs("alice", "wrong", "--json check --write");
    EXPECT_EQ(refused.exitCode, 1);
    for (const QString& outcome : { u"sign-in: fails"_s, u"posting: not tried"_s, u"search: works"_s })
        EXPECT_TRUE(outcomesIn(refused).contains(outcome)) << qPrintable(outcome);
}

TEST_F(ServiceCommands, CheckNamesWhatASiteDoesDifferently)
{
    KRTestSite site;
    QList<QByteArray> posts;
    for (int id = 20; id > 0; --id)
        posts.append(KRTestSite::status(id, "joe", "a post"));
    // Pages are honoured, limits are not.
    site.answer("/api/statuses/home_timeline.xml", [posts](const KRTestServer::Request& request) {
        return KRTestSite::Answer { 200,
            KRTestSite::statuses(request.target.contains("page=2") ? posts.sliced(3) : posts) };
    });
    const std::pair<const char*, QString> answers[] = {
        { "statuses/public_timeline.xml", u"public_timeline.no_auth.body.xml"_s },
        { "account/verify_credentials.xml", u"verify_credentials.ok.body.xml"_s },
        { "statuses/replies.xml", u"replies.default.body.xml"_s },
        { "statuses/user_timeline.xml", u"user_timeline.user_id.body.xml"_s },
        { "direct_messages.xml", u"direct_messages.default.body.xml"_s },
        { "direct_messages/sent.xml", u"direct_messages_sent.default.body.xml"_s },
        { "search.json", u"search.word.body.json"_s },
        // What looks like a command is answered with an older post: it must not be deleted.
        { "statuses/update.xml", u"update.command_stats.body.xml"_s },
    };
    for (const auto& [path, file] : answers)
        site.answer(QByteArray("/api/") + path, KRTestSite::realAnswer(file));
    site.answer("/api/trends.json", KRTestSite::realAnswer(u"trends.body.json"_s), 501);
    const QByteArray host = site.host().toLatin1() + "/api";
    const QByteArray options = servicesWith("RESTHost=" + host + "\nSearchHost=https://" + host + '\n')
        + "--account joe --password-stdin --json check ";
    const Outcome checked = run(options + "--write --ca-file " + KRTestAuthorityFile().toUtf8(), "secret\n");
    EXPECT_EQ(checked.exitCode, 0) << checked.errors.toStdString();
    const QStringList outcomes = outcomesIn(checked);
    const QString expected
        = u"tls: works|tls of search: works|sign-in: works|home timeline: works|count: differs|"
          "since_id: differs|max_id: fails|page: works|search: differs|trends: fails|messages: works|"
          "uploads: not tried|posting: differs|deleting: not tried"_s;
    for (const QString& outcome : expected.split(u'|'))
        EXPECT_TRUE(outcomes.contains(outcome)) << qPrintable(outcome);

    // A certificate that nobody vouches for, and nobody there at all: the rest is not even tried.
    const Outcome distrusted = run(options, "secret\n");
    EXPECT_EQ(distrusted.exitCode, 1);
    EXPECT_TRUE(outcomesIn(distrusted).contains(u"tls: fails"_s)) << distrusted.output.toStdString();
    const Outcome dead = run(servicesWith("RESTHost=127.0.0.1:1\n") + "check");
    EXPECT_EQ(dead.exitCode, 1);
    EXPECT_TRUE(dead.output.startsWith("not tried tls ")) << dead.output.toStdString();
    EXPECT_EQ(dead.output.count("No server was reached"), 16);
    EXPECT_TRUE(dead.output.contains("Look at RESTHost"));
    EXPECT_TRUE(dead.output.endsWith("it was not reached.\n"));
}

TEST(ServerCheckRules, JudgePages)
{
    using Outcome = ServerCheckResult::Outcome;
    using namespace ServerCheckRules;
    const QStringList known { u"9"_s, u"8"_s, u"7"_s, u"6"_s, u"5"_s };
    const auto IDs
        = [](const char* text) { return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts); };
    for (const auto& [judged, expected] :
        QList<std::pair<ServerCheckResult, Outcome>> { { count(IDs("9 8 7")), Outcome::Works },
            { count(IDs("9 8 7 6")), Outcome::Differs },
            { count(IDs("9")), Outcome::Differs },
            { sinceID(known, IDs("10 9 8")), Outcome::Works },
            { sinceID(known, IDs("9 8 7")), Outcome::Differs },
            { sinceID(known, IDs("9 8 7 6 5")), Outcome::Differs },
            { sinceID(known, IDs("9")), Outcome::Fails },
            { maxID(known, IDs("7 6 5")), Outcome::Works },
            { maxID(known, IDs("6 5 4")), Outcome::Differs },
            { maxID(known, IDs("9 8 7 6")), Outcome::Fails },
            { maxID(known, IDs("")), Outcome::Fails },
            { page(known, IDs("6 5 4")), Outcome::Works },
            { page(known, IDs("7 6 5")), Outcome::Works },
            { page(known, IDs("9 8 7")), Outcome::Fails },
            { page(known, IDs("1")), Outcome::Differs },
            { page(known, IDs("5 4 3")), Outcome::Differs },
            { page(known, IDs("")), Outcome::Fails } }) {
        EXPECT_EQ(judged.outcome, expected) << qPrintable(judged.text());
        EXPECT_EQ(judged.meaning.isEmpty(), expected == Outcome::Works);
    }
    for (const QByteArray& body :
        { QByteArray("<div>"), QByteArray(), QByteArray("{}"), QByteArray("\"x\"") })
        EXPECT_EQ(search(u"x"_s, false, body).outcome, Outcome::Fails) << body.toStdString();
    EXPECT_EQ(search(u"x"_s, false, QByteArray("{\"results\":[]}")).outcome, Outcome::Works);
    EXPECT_EQ(search(u"x"_s, true, QByteArray("{\"results\":[]}")).outcome, Outcome::Differs);
    const auto post = std::make_shared<TwitterStatus>();
    EXPECT_TRUE(searchWord({ post }).isNull());
    post->setText(u"@somebody_else at https://example.org/longest sees a #hashtagged heron."_s);
    EXPECT_EQ(searchWord({ post }), u"heron"_s);
    const auto unreachable = [](int code) {
        return isUnreachable(errorWithDomain(QString::fromUtf16(KRHTTPConnectionErrorDomain), code, {}));
    };
    EXPECT_TRUE(unreachable(7) && unreachable(KRHTTPConnectionErrorBadURL));
    EXPECT_FALSE(unreachable(KRHTTPConnectionErrorTooManyRedirects));
    EXPECT_EQ(uploads(QUrl(u"https://a.example/"_s), 404).outcome, Outcome::Fails);
    EXPECT_EQ(uploads(QUrl(u"https://a.example/"_s), 405).outcome, Outcome::Works);
    EXPECT_EQ(uploads(QUrl(u"https://a.example/a%2Fb"_s), 404).finding,
        u"https://a.example/a%2Fb answers with status 404"_s);
}

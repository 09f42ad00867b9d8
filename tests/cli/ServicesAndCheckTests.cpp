#include "KRTestCLI.h"
#include "cli/ServerCheckRules.h"
#include "support/KRTestSite.h"
#include "transport/KRHTTPConnection.h"

namespace {

class ServiceCommands : public testing::Test {
protected:
    static void SetUpTestSuite() { s_cli = std::make_unique<KRTestCLI>(); }
    static void TearDownTestSuite() { s_cli.reset(); }
    void SetUp() override { ASSERT_TRUE(s_cli->isReady()); }

    static QJsonObject objectOf(const QList<QByteArray>& arguments, const QByteArray& input = {})
    {
        const KRTestCLI::Outcome outcome = s_cli->alice(QList<QByteArray> { "--json" } + arguments, input);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors.toStdString();
        return outcome.objects().value(0);
    }

    QByteArray fileWith(const QByteArray& content) const
    {
        QFile file(m_folder.filePath(u"file"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName().toUtf8();
    }

    /// A table of hosts with these lines.
    QByteArray servicesWith(const QByteArray& lines) const { return fileWith("[ServiceHosts]\n" + lines); }

    static inline std::unique_ptr<KRTestCLI> s_cli;
    QTemporaryDir m_folder;
};

/// The outcomes of a run of "check --json", by the check's name.
QMap<QString, QString> outcomesIn(const KRTestCLI::Outcome& run)
{
    QMap<QString, QString> outcomes;
    for (const QJsonObject& object : run.objects())
        outcomes.insert(object.value(u"check").toString(), object.value(u"outcome").toString());
    return outcomes;
}

} // namespace

TEST_F(ServiceCommands, LinksBecomeShortAndLongAgain)
{
    const QString target = u"http://example.org/a_(b)?x=1&y=2#z"_s;
    for (const char* service : { "", "bitly", "tinyurl", "isgd", "trim", "diggbar" }) {
        SCOPED_TRACE(service);
        QList<QByteArray> arguments { "shorten", target.toUtf8() };
        if (*service)
            arguments += { "--service", service };
        const QByteArray link = objectOf(arguments).value(u"url").toString().toUtf8();
        EXPECT_EQ(s_cli->alice(arguments).output, link + '\n');
        // DiggBar's links are not among the known ones.
        const bool isKnown = s_cli->alice({ "shorten", link }).errors.contains("Already shortened");
        EXPECT_EQ(isKnown, service != std::string_view("diggbar"));
        for (const QList<QByteArray>& option :
            { QList<QByteArray> {}, { "--service", "bitly" }, { "--service", "longurl" } }) {
            const QList<QByteArray> expansion = QList<QByteArray> { "expand", link } + option;
            EXPECT_EQ(objectOf(expansion).value(u"url").toString(), target);
        }
    }
    EXPECT_TRUE(
        s_cli->alice({ "shorten", target.toUtf8(), "--service", "longurl" }).errors.contains("longurl"));
    const KRTestCLI::Outcome unknown = s_cli->alice({ "expand", "x", "--service", "tinyurl" });
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(unknown.errors.contains("bitly, longurl\n")) << unknown.errors.toStdString();
    const KRTestCLI::Outcome noAddress = s_cli->alice({ "shorten", "no address" });
    EXPECT_TRUE(noAddress.errors.startsWith("com.kestrin.bitly-parsing-error -1: The answer"))
        << noAddress.errors.toStdString();
    EXPECT_EQ(s_cli->alice({ "timeline", "--service", "bitly" }).exitCode, 2);
}

TEST_F(ServiceCommands, FilesAndTextsGoToTheirServices)
{
    const QByteArray picture = fileWith("\xff\xd8\xff\xe0 a picture");
    QStringList links;
    for (const char* service : { "yfrog", "twitpic", "twitgoo", "posterous", "imgly", "pixim" })
        links.append(objectOf({ "upload", picture, "--service", service }).value(u"url").toString());
    EXPECT_EQ(links.removeDuplicates(), 0);
    const QByteArray movie = fileWith(QByteArray("\0\0\0\x14"
                                                 "ftypqt  ",
                                          12)
        + QByteArray(5000, '\1'));
    EXPECT_TRUE(s_cli->alice({ "upload", movie }).output.endsWith("z\n"));
    EXPECT_TRUE(s_cli->alice({ "upload", movie, "--service", "imgly" }).errors.contains("Movies"));

    QByteArray text;
    for (int i = 0; i < 50; ++i)
        text += "w\xc3\xb6rt & <" + QByteArray::number(i) + "> ";
    const QJsonObject stored = objectOf({ "longpost", "-" }, text);
    EXPECT_TRUE(stored.value(u"content").toString().endsWith(stored.value(u"shortLink").toString()));
    EXPECT_EQ(s_cli->alice({ "shrink", "Thanks to you, see later" }).output, QByteArray("thx 2 u, c l8r\n"));
    EXPECT_EQ(objectOf({ "shrink", "Thanks to you, see later" }).value(u"difference").toInt(), 10);
}

TEST_F(ServiceCommands, WhatIsNotSetUpIsAnErrorAtOnce)
{
    const QByteArray services = servicesWith("RESTHost=127.0.0.1:1\n");
    const QByteArray file = "/etc/hostname";
    for (const auto& [arguments, word] : QList<std::pair<QList<QByteArray>, QByteArray>> {
             { { "shorten", "http://example.org/" }, "BitlyAPIHost" },
             { { "shorten", "http://example.org/", "--service", "isgd" }, "IsGdAPIHost" },
             { { "expand", "http://example.org/" }, "ExpansionAPIHost" },
             { { "expand", "http://example.org/", "--service", "longurl" }, "LongURLAPIHost" },
             { { "upload", file }, "YFrogAPIHost" },
             { { "longpost", "text" }, "TwitlongerAPIHost" },
             { { "shrink", "text" }, "TweetshrinkAPIHost" } }) {
        const KRTestCLI::Outcome outcome
            = s_cli->run(QList<QByteArray> { "--services", services } + arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_TRUE(outcome.errors.startsWith("com.kestrin.pelinor -1: ") && outcome.errors.contains(word))
            << outcome.errors.toStdString();
    }
    EXPECT_TRUE(s_cli->alice({ "upload", "/no/such/file" }).errors.contains("cannot be read"));
}

TEST_F(ServiceCommands, CheckOfTheLocalServiceFindsAllInOrder)
{
    const auto postsOfAlice = [] {
        return s_cli->alice({ "--json", "user", "alice", "--count", "5" }).output;
    };
    const QByteArray before = postsOfAlice();
    const KRTestCLI::Outcome reading = s_cli->alice({ "--json", "check" });
    EXPECT_EQ(reading.exitCode, 0) << reading.errors.toStdString();
    QMap<QString, QString> outcomes = outcomesIn(reading);
    EXPECT_EQ(outcomes.size(), 19);
    for (const auto& [check, outcome] : outcomes.asKeyValueRange()) {
        const bool writes = check == u"posting" || check == u"deleting";
        // Search is spoken to over plain http, and the last line is the verdict.
        const QString expected = check.isEmpty() ? QString()
            : writes                             ? u"not tried"_s
            : check == u"tls of search"          ? u"differs"_s
                                                 : u"works"_s;
        EXPECT_EQ(outcome, expected) << qPrintable(check);
    }
    EXPECT_EQ(reading.objects().last().value(u"usable"), true);

    outcomes = outcomesIn(s_cli->alice({ "--json", "check", "--write" }));
    EXPECT_EQ(outcomes.value(u"posting"_s), u"works"_s);
    EXPECT_EQ(outcomes.value(u"deleting"_s), u"works"_s);
    EXPECT_EQ(postsOfAlice(), before);
    const KRTestCLI::Outcome plain = s_cli->alice({ "check" });
    EXPECT_TRUE(plain.output.contains("works     sign-in         Signed in as alice\n"));
    EXPECT_TRUE(plain.output.endsWith("Pelinor can be used with this server.\n"));

    const KRTestCLI::Outcome nobody = s_cli->runAnonymously({ "--json", "check" });
    EXPECT_EQ(nobody.exitCode, 1);
    EXPECT_TRUE(nobody.objects().last().value(u"usable").isNull()) << "nobody knows";

    const KRTestCLI::Outcome refused = s_cli->runAs("alice", "wrong", { "--json", "check", "--write" });
    EXPECT_EQ(refused.exitCode, 1);
    outcomes = outcomesIn(refused);
    EXPECT_EQ(outcomes.value(u"sign-in"_s), u"fails"_s);
    EXPECT_EQ(outcomes.value(u"posting"_s), u"not tried"_s);
    EXPECT_EQ(outcomes.value(u"search"_s), u"works"_s);
}

TEST_F(ServiceCommands, CheckNamesWhatASiteDoesDifferently)
{
    const auto realAnswer = [](const char* name) {
        QFile file(QLatin1String(PELINOR_TEST_DATA "/gnu-social/") + QLatin1String(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    };
    KRTestSite site;
    QList<QByteArray> posts;
    for (int id = 20; id > 0; --id)
        posts.append(KRTestSite::status(id, "joe", "a post"));
    // Pages are honoured, limits are not.
    site.answer("/api/statuses/home_timeline.xml", [posts](const KRTestServer::Request& request) {
        return KRTestSite::Answer { 200,
            KRTestSite::statuses(request.target.contains("page=2") ? posts.sliced(3) : posts) };
    });
    site.answer("/api/statuses/public_timeline.xml", realAnswer("public_timeline.no_auth.body.xml"));
    site.answer("/api/account/verify_credentials.xml", realAnswer("verify_credentials.ok.body.xml"));
    site.answer("/api/statuses/replies.xml", realAnswer("replies.default.body.xml"));
    site.answer("/api/statuses/user_timeline.xml", realAnswer("user_timeline.user_id.body.xml"));
    site.answer("/api/direct_messages.xml", realAnswer("direct_messages.default.body.xml"));
    site.answer("/api/direct_messages/sent.xml", realAnswer("direct_messages_sent.default.body.xml"));
    site.answer("/api/search.json", realAnswer("search.word.body.json"));
    site.answer("/api/trends.json", realAnswer("trends.body.json"), 501);
    // What looks like a command is answered with an older post: it must not be deleted.
    site.answer("/api/statuses/update.xml", realAnswer("update.command_stats.body.xml"));
    const QByteArray host = site.host().toLatin1() + "/api";
    const QList<QByteArray> options { "--services",
        servicesWith("RESTHost=" + host + "\nSearchHost=https://" + host + '\n'),
        "--ca-file" };
    const QList<QByteArray> rest { "--account", "joe", "--password-stdin", "--json", "check", "--write" };
    const KRTestCLI::Outcome run
        = s_cli->run(options + QList<QByteArray> { KRTestAuthorityFile().toUtf8() } + rest, "secret\n");
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const QMap<QString, QString> outcomes = outcomesIn(run);
    for (const auto& [check, outcome] : QMap<QString, QString> { { u"tls"_s, u"works"_s },
             { u"tls of search"_s, u"works"_s },
             { u"sign-in"_s, u"works"_s },
             { u"home timeline"_s, u"works"_s },
             { u"count"_s, u"differs"_s },
             { u"since_id"_s, u"differs"_s },
             { u"max_id"_s, u"fails"_s },
             { u"page"_s, u"works"_s },
             { u"search"_s, u"differs"_s },
             { u"trends"_s, u"fails"_s },
             { u"messages"_s, u"works"_s },
             { u"uploads"_s, u"not tried"_s },
             { u"posting"_s, u"differs"_s },
             { u"deleting"_s,
                 u"not tried"_s } }.asKeyValueRange())
        EXPECT_EQ(outcomes.value(check), outcome) << qPrintable(check);

    // A certificate that nobody vouches for, and nobody there at all: the rest is not even tried.
    const KRTestCLI::Outcome distrusted
        = s_cli->run(options.first(2) + rest.first(4) + QList<QByteArray> { "check" }, "secret\n");
    EXPECT_EQ(distrusted.exitCode, 1);
    EXPECT_EQ(outcomesIn(distrusted).value(u"tls"_s), u"fails"_s) << distrusted.output.toStdString();
    const KRTestCLI::Outcome dead
        = s_cli->run({ "--services", servicesWith("RESTHost=127.0.0.1:1\n"), "check" });
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

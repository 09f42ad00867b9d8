#include "KRTestCLI.h"
#include "cli/CommandDocuments.h"
#include "cli/CommandTable.h"
#include "cli/RecordOutput.h"

#include <QJsonArray>

namespace {

class Commands : public testing::Test {
protected:
    static void SetUpTestSuite() { s_cli = new KRTestCLI; }
    static void TearDownTestSuite()
    {
        delete s_cli;
        s_cli = nullptr;
    }
    void SetUp() override { ASSERT_TRUE(s_cli->isReady()); }

    [[nodiscard]] static QByteArray
    postAs(bool isAlice, const QByteArray& text, const QList<QByteArray>& options = {})
    {
        const QList<QByteArray> arguments = QList<QByteArray> { "--json", "post", text } + options;
        const KRTestCLI::Outcome outcome = isAlice ? s_cli->alice(arguments) : s_cli->bob(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors.toStdString();
        return outcome.objects().value(0).value(u"statusID").toString().toLatin1();
    }

    static inline KRTestCLI* s_cli = nullptr;
};

} // namespace

TEST_F(Commands, ReadTimelinesAndPeople)
{
    struct Case {
        QList<QByteArray> arguments;
        qsizetype atLeast;
        const char16_t* member;
    };
    for (const Case& test : QList<Case> { { { "timeline", "--count", "7" }, 7, u"statusID" },
             { { "timeline", "--page", "2" }, 20, u"statusID" },
             { { "mentions" }, 5, u"statusID" },
             { { "public" }, 20, u"statusID" },
             { { "user", "bob", "--count", "3" }, 3, u"statusID" },
             { { "favorites", "alice" }, 1, u"statusID" },
             { { "profile", "bob" }, 1, u"userID" },
             { { "friends", "alice" }, 3, u"userID" },
             { { "followers", "alice" }, 3, u"userID" } }) {
        SCOPED_TRACE(test.arguments.join(' ').toStdString());
        const KRTestCLI::Outcome outcome = s_cli->alice(QList<QByteArray> { "--json" } + test.arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors.toStdString();
        EXPECT_GE(outcome.objects().size(), test.atLeast);
        for (const QJsonObject& object : outcome.objects())
            EXPECT_FALSE(object.value(test.member).toString().isEmpty());
        const KRTestCLI::Outcome plain = s_cli->alice(test.arguments);
        EXPECT_EQ(plain.exitCode, 0);
        EXPECT_GE(plain.output.count('\n'), test.atLeast);
    }
    const QList<QJsonObject> page = s_cli->alice({ "--json", "timeline", "--count", "5" }).objects();
    const QByteArray third = page.value(2).value(u"statusID").toString().toLatin1();
    const QList<QJsonObject> older
        = s_cli->alice({ "--json", "timeline", "--max-id", third, "--count", "2" }).objects();
    EXPECT_EQ(older.value(0), page.value(2)) << "max-id is inclusive";
    const QList<QJsonObject> newer = s_cli->alice({ "--json", "timeline", "--since-id", third }).objects();
    EXPECT_EQ(newer, page.first(2)) << "since-id is exclusive";
}

TEST_F(Commands, PostShowAnswerAndDelete)
{
    const QByteArray text = "see http://example.org/x_(y) #tag @bob $ACME a@example.org & <3";
    const QByteArray first = postAs(true, text);
    const QJsonObject shown = s_cli->alice({ "--json", "show", first }).objects().value(0);
    EXPECT_EQ(shown.value(u"text").toString().toUtf8(), text);
    EXPECT_EQ(shown.value(u"fromUser").toObject().value(u"username"), u"alice"_s);
    EXPECT_TRUE(QDateTime::fromString(shown.value(u"date").toString(), Qt::ISODate).isValid());
    const auto ranges = [&shown](const char16_t* name) { return shown.value(name).toArray(); };
    EXPECT_EQ(ranges(u"links"), QJsonArray({ QJsonArray { 4, 24 } }));
    EXPECT_EQ(ranges(u"hashtags"), QJsonArray({ QJsonArray { 29, 4 } }));
    EXPECT_EQ(ranges(u"usernames"), QJsonArray({ QJsonArray { 34, 4 } }));
    EXPECT_EQ(ranges(u"stockSymbols"), QJsonArray({ QJsonArray { 39, 5 } }));
    EXPECT_EQ(ranges(u"emailAddresses"), QJsonArray({ QJsonArray { 45, 13 } }));

    const QByteArray answer = postAs(false, "@alice an answer", { "--reply-to", first });
    const QByteArray second = postAs(true, "@bob and another", { "--reply-to", answer });
    QStringList chain;
    for (const QJsonObject& status : s_cli->alice({ "--json", "conversation", second }).objects())
        chain.append(status.value(u"statusID").toString());
    EXPECT_EQ(chain, (QStringList { QLatin1String(second), QLatin1String(answer), QLatin1String(first) }));

    EXPECT_EQ(s_cli->alice({ "delete", first }).exitCode, 0);
    const KRTestCLI::Outcome gone = s_cli->alice({ "show", first });
    EXPECT_EQ(gone.exitCode, 1);
    EXPECT_TRUE(gone.errors.startsWith("com.kestrin.httprequest 410: Gone. ")) << gone.errors.toStdString();
    const KRTestCLI::Outcome broken = s_cli->alice({ "conversation", second });
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_TRUE(broken.output.contains("an answer")) << "what there is of it is printed";
}

TEST_F(Commands, PostFromStandardInput)
{
    const QByteArray text = "several\nlines from a script";
    const KRTestCLI::Outcome outcome = s_cli->alice({ "--json", "post", "-" }, text + '\n');
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors.toStdString();
    EXPECT_EQ(outcome.objects().value(0).value(u"text").toString().toUtf8(), text);
    const KRTestCLI::Outcome tooLong = s_cli->alice({ "post", QByteArray(200, 'x') });
    EXPECT_EQ(tooLong.exitCode, 1);
    EXPECT_TRUE(tooLong.errors.contains("413"));
}

TEST_F(Commands, FavouritesAndFollowing)
{
    const QByteArray liked = postAs(false, "likeable");
    EXPECT_EQ(s_cli->alice({ "favorite", liked }).exitCode, 0);
    EXPECT_EQ(s_cli->alice({ "--json", "favorites", "alice" })
                  .objects()
                  .value(0)
                  .value(u"statusID")
                  .toString()
                  .toLatin1(),
        liked);
    EXPECT_EQ(s_cli->alice({ "favorite", liked }).exitCode, 1) << "a second time is refused, and told";
    EXPECT_EQ(s_cli->alice({ "unfavorite", liked }).exitCode, 0);

    const auto follows = [] {
        return s_cli->alice({ "--json", "follows", "alice", "bob" })
            .objects()
            .value(0)
            .value(u"follows")
            .toBool();
    };
    const bool before = follows();
    EXPECT_EQ(s_cli->alice({ before ? "unfollow" : "follow", "bob" }).exitCode, 0);
    EXPECT_EQ(follows(), !before);
    EXPECT_EQ(s_cli->alice({ before ? "follow" : "unfollow", "bob" }).exitCode, 0);
    EXPECT_EQ(follows(), before);
}

TEST_F(Commands, SignInAndSayWhatIsWrong)
{
    EXPECT_EQ(s_cli->alice({ "verify" }).output, QByteArray("Signed in as alice\n"));
    EXPECT_TRUE(s_cli->alice({ "rate-limit" }).output.contains("hits"));
    const KRTestCLI::Outcome refused = s_cli->runAs("alice", "wrong", { "verify" });
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.errors.startsWith("com.kestrin.httprequest 401: Unauthorized. "))
        << refused.errors.toStdString();
    EXPECT_FALSE(refused.errors.contains("wrong"));

    const KRTestCLI::Outcome noHost = s_cli->run({ "public" });
    EXPECT_EQ(noHost.exitCode, 1);
    EXPECT_TRUE(noHost.errors.startsWith("com.kestrin.pelinor "));
    EXPECT_EQ(s_cli->run({ "--services", "/no/such/file", "public" }).exitCode, 2);
    EXPECT_EQ(s_cli->alice({ "--ca-file", "/no/such/file", "public" }).exitCode, 2);
    EXPECT_EQ(s_cli->alice({ "--trust-certificate", "12:34", "public" }).exitCode, 2);
    EXPECT_EQ(s_cli->run({ "--help" }).exitCode, 0);
    EXPECT_EQ(s_cli->run({ "dance" }).exitCode, 2);
}

TEST_F(Commands, TrustTheCertificateThatIsNamed)
{
    const auto verify = [](const QByteArray& fingerprint) {
        QList<QByteArray> options { "--services",
            s_cli->servicesFile(),
            "--account",
            "alice",
            "--password-stdin" };
        if (!fingerprint.isEmpty())
            options += { "--trust-certificate", fingerprint };
        return s_cli->run(options + QList<QByteArray> { "verify" }, "wonderland\n");
    };
    const KRTestCLI::Outcome refused = verify({});
    EXPECT_EQ(refused.exitCode, 1);
    const QByteArray fingerprint = refused.errors.trimmed().right(95);
    EXPECT_EQ(verify(fingerprint.toLower()).exitCode, 0) << refused.errors.toStdString();
    const KRTestCLI::Outcome changed
        = verify(QByteArray(fingerprint).replace(0, 2, fingerprint.first(2) == "00" ? "11" : "00"));
    EXPECT_EQ(changed.exitCode, 1);
    EXPECT_TRUE(changed.errors.contains("has changed") && changed.errors.contains(fingerprint))
        << changed.errors.toStdString();
}

TEST(CommandLine, RefusesWhatMakesNoSense)
{
    for (const QStringList& arguments : { QStringList {},
             QStringList { u"show"_s },
             QStringList { u"show"_s, u"1"_s, u"2"_s },
             QStringList { u"timeline"_s, u"--count"_s },
             QStringList { u"timeline"_s, u"--count"_s, u"many"_s },
             QStringList { u"timeline"_s, u"--count"_s, u"-1"_s },
             QStringList { u"public"_s, u"--count"_s, u"3"_s },
             QStringList { u"verify"_s, u"--reply-to"_s, u"3"_s },
             QStringList { u"--nonsense"_s, u"verify"_s },
             QStringList { u"-x"_s, u"verify"_s },
             QStringList { u"verify"_s, u"--account"_s, u"--json"_s },
             QStringList { u"verify"_s, u"--password-stdin"_s } }) {
        const auto line = CommandLine::parse(arguments);
        EXPECT_TRUE(line.isError()) << arguments.join(u' ').toStdString();
    }
    EXPECT_EQ(CommandLine::parse({ u"public"_s, u"--count"_s, u"3"_s }).error().description,
        u"\"public\" does not take --count"_s);
    EXPECT_EQ(CommandLine::parse({ u"show"_s }).error().description, u"Usage: pelinor-cli show ID"_s);
    EXPECT_TRUE(CommandLine::parse({ u"-h"_s }).value().showsHelp);
    EXPECT_EQ(CommandLine::parse({ u"post"_s, u"-3 degrees"_s }).value().arguments,
        QStringList { u"-3 degrees"_s });
    const auto dashes = CommandLine::parse({ u"--json"_s, u"post"_s, u"--"_s, u"--json is a text here"_s });
    ASSERT_FALSE(dashes.isError());
    EXPECT_EQ(dashes.value().arguments, QStringList { u"--json is a text here"_s });
}

namespace {

QByteArray outputOf(const QByteArray& command)
{
    std::FILE* pipe = ::popen(command.constData(), "r");
    QByteArray output;
    for (int c = pipe ? std::fgetc(pipe) : EOF; c != EOF; c = std::fgetc(pipe))
        output += static_cast<char>(c);
    if (pipe)
        ::pclose(pipe);
    return output.trimmed();
}

} // namespace

TEST(CommandDocuments, ComeFromTheTable)
{
    for (const QString& document : { CommandDocuments::usage(),
             CommandDocuments::manualPage().replace(u"\\-"_s, u"-"_s),
             CommandDocuments::bashCompletion(),
             CommandDocuments::zshCompletion() }) {
        for (const auto& command : CommandTable::commands())
            EXPECT_TRUE(document.contains(QLatin1String(command.name))) << command.name;
        for (const auto& option : CommandTable::options())
            EXPECT_TRUE(document.contains(QLatin1String(option.name))) << option.name;
    }
    for (const QString& line : CommandDocuments::usage().split(u'\n'))
        EXPECT_LT(line.size(), 80) << qPrintable(line);
    EXPECT_TRUE(CommandDocuments::usage().contains(u"  post TEXT [--reply-to ID]\n      "_s));
    EXPECT_EQ(outputOf(PELINOR_CLI " --generate man | man --warnings -l - 2>&1 >/dev/null"), "");
}

TEST(CommandDocuments, CompleteCommandsAndTheirOptions)
{
    const std::pair<QByteArray, QByteArray> cases[] = {
        { "time", "timeline" },
        { "--json fa", "favorites favorite" },
        { "--account timeline fo", "followers follow follows" },
        { "post --r", "--reply-to" },
        { "public --c", "--ca-file" },
        { "timeline --c", "--ca-file --count" },
        { "--account ''", "" },
        { "--services /etc/hostn", "/etc/hostname" },
        { "upload /etc/hostn", "/etc/hostname" },
    };
    const auto sorted = [](const QByteArray& words) {
        QList<QByteArray> list = words.split(' ');
        std::sort(list.begin(), list.end());
        return list;
    };
    for (const auto& [words, completions] : cases) {
        const QByteArray script = "bash -c '. <(" PELINOR_CLI " --generate bash); COMP_WORDS=(pelinor-cli "
            + QByteArray(words).replace('\'', '"')
            + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _pelinor_cli; echo ${COMPREPLY[@]}'";
        EXPECT_EQ(sorted(outputOf(script)), sorted(completions)) << words.toStdString();
    }
}

TEST(RecordOutput, GivesATerminalNoCommands)
{
    TwitterStatus status;
    status.setStatusID(u"1"_s);
    status.setText(u"\u001b[2Jgone\u0007 \u009b31m\ttab\nline"_s);
    const QString text = RecordOutput::text(status);
    EXPECT_FALSE(text.contains(QChar(0x1b)) || text.contains(QChar(7)) || text.contains(QChar(0x9b)));
    EXPECT_TRUE(text.contains(u"\ttab\n  line"));
}

#include "KRTestCLI.h"
#include "cli/CommandDocuments.h"
#include "cli/CommandTable.h"
#include "cli/RecordOutput.h"

using Commands = KRTestCLI;

TEST_F(Commands, ReadTimelinesAndPeople)
{
    const struct {
        QByteArray arguments;
        qsizetype atLeast;
        const char16_t* member;
    } cases[] = {
        { "timeline --count 7", 7, u"statusID" },
        { "timeline --page 2", 20, u"statusID" },
        { "mentions", 5, u"statusID" },
        { "public", 20, u"statusID" },
        { "user bob --count 3", 3, u"statusID" },
        { "favorites alice", 1, u"statusID" },
        { "profile bob", 1, u"userID" },
        { "friends alice", 3, u"userID" },
        { "followers alice", 3, u"userID" },
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.arguments.constData());
        const QList<QJsonObject> objects = objectsOf(test.arguments);
        EXPECT_GE(objects.size(), test.atLeast);
        for (const QJsonObject& object : objects)
            EXPECT_FALSE(object.value(test.member).toString().isEmpty());
        const Outcome plain = alice(test.arguments);
        EXPECT_EQ(plain.exitCode, 0);
        EXPECT_GE(plain.output.count('\n'), test.atLeast);
    }
    const QList<QJsonObject> page = objectsOf("timeline --count 5");
    const QByteArray third = page.value(2).value(u"statusID").toString().toLatin1();
    EXPECT_EQ(objectsOf("timeline --count 2 --max-id " + third).value(0), page.value(2))
        << "max-id is inclusive";
    EXPECT_EQ(objectsOf("timeline --since-id " + third), page.first(2)) << "since-id is exclusive";
}

TEST_F(Commands, PostShowAnswerAndDelete)
{
    const QString text = u"see http://example.org/x_(y) #tag @bob $ACME a@example.org & <3"_s;
    const QByteArray first = valueOf("post " + quoted(text), u"statusID");
    const QJsonObject shown = objectsOf("show " + first).value(0);
    EXPECT_EQ(shown.value(u"text").toString(), text);
    EXPECT_EQ(nameIn(shown, u"fromUser"), u"alice"_s);
    EXPECT_TRUE(QDateTime::fromString(shown.value(u"date").toString(), Qt::ISODate).isValid());
    for (const auto& [name, range] : { std::pair(u"links", QJsonArray { 4, 24 }),
             std::pair(u"hashtags", QJsonArray { 29, 4 }),
             std::pair(u"usernames", QJsonArray { 34, 4 }),
             std::pair(u"stockSymbols", QJsonArray { 39, 5 }),
             std::pair(u"emailAddresses", QJsonArray { 45, 13 }) })
        EXPECT_EQ(shown.value(name), QJsonArray({ range })) << QString::fromUtf16(name).toStdString();

    const QJsonObject answered
        = objectsOf(bob("--json post '@alice an answer' --reply-to " + first)).value(0);
    const QByteArray answer = answered.value(u"statusID").toString().toLatin1();
    const QByteArray second = valueOf("post '@bob and another' --reply-to " + answer, u"statusID");
    QByteArrayList chain;
    for (const QJsonObject& status : objectsOf("conversation " + second))
        chain.append(status.value(u"statusID").toString().toLatin1());
    EXPECT_EQ(chain, QByteArrayList({ second, answer, first }));

    EXPECT_EQ(alice("delete " + first).exitCode, 0);
    const Outcome gone = alice("show " + first);
    EXPECT_EQ(gone.exitCode, 1);
    EXPECT_TRUE(gone.errors.startsWith("com.kestrin.httprequest 410: Gone. ")) << gone.errors.toStdString();
    const Outcome broken = alice("conversation " + second);
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_TRUE(broken.output.contains("an answer")) << "what there is of it is printed";
}

TEST_F(Commands, PostFromStandardInput)
{
    const QByteArray text = "several\nlines from a script";
    EXPECT_EQ(valueOf("post -", u"text", text + '\n'), text);
    const Outcome tooLong = alice("post " + QByteArray(200, 'x'));
    EXPECT_EQ(tooLong.exitCode, 1);
    EXPECT_TRUE(tooLong.errors.contains("413"));
}

TEST_F(Commands, FavouritesAndFollowing)
{
    const QByteArray liked = valueOf("post likeable", u"statusID");
    EXPECT_EQ(alice("favorite " + liked).exitCode, 0);
    EXPECT_EQ(valueOf("favorites alice", u"statusID"), liked);
    EXPECT_EQ(alice("favorite " + liked).exitCode, 1) << "a second time is refused, and told";
    EXPECT_EQ(alice("unfavorite " + liked).exitCode, 0);
    EXPECT_NE(valueOf("favorites alice", u"statusID"), liked);

    const QByteArray before = valueOf("follows alice bob", u"follows");
    for (const bool again : { false, true }) {
        EXPECT_EQ(alice((before == "true") != again ? "unfollow bob" : "follow bob").exitCode, 0);
        EXPECT_EQ(valueOf("follows alice bob", u"follows") == before, again);
    }
}

TEST_F(Commands, SignInAndSayWhatIsWrong)
{
    EXPECT_EQ(alice("verify").output, QByteArray("Signed in as alice\n"));
    EXPECT_TRUE(alice("rate-limit").output.contains("hits"));
    const Outcome refused = runAs("alice", "wrong", "verify");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.errors.startsWith("com.kestrin.httprequest 401: Unauthorized. "))
        << refused.errors.toStdString();
    EXPECT_FALSE(refused.errors.contains("wrong"));

    const Outcome noHost = run("public");
    EXPECT_EQ(noHost.exitCode, 1);
    EXPECT_TRUE(noHost.errors.startsWith("com.kestrin.pelinor "));
    EXPECT_EQ(run("--services /no/such/file public").exitCode, 2);
    EXPECT_EQ(alice("--ca-file /no/such/file public").exitCode, 2);
    EXPECT_EQ(alice("--trust-certificate 12:34 public").exitCode, 2);
    EXPECT_TRUE(run("--help").output.contains("\nCommands:\n"));
    for (const char* const line : { "help post", "post --help" }) {
        const QByteArray help = run(line).output;
        EXPECT_TRUE(help.startsWith("Usage: pelinor-cli [OPTION]... post TEXT [--reply-to ID]\n")) << line;
        EXPECT_TRUE(help.contains("--reply-to ID") && !help.contains("--count")) << line;
    }
    EXPECT_TRUE(run("--version").output.startsWith("pelinor-cli 1."));
    for (const char* const line : { "dance", "help dance", "help=3" })
        EXPECT_EQ(run(line).exitCode, 2) << line;
}

TEST_F(Commands, TrustTheCertificateThatIsNamed)
{
    const auto verify = [](const QByteArray& option) {
        return run(serviceOption() + " --account alice --password-stdin verify " + option, "wonderland\n");
    };
    const Outcome refused = verify({});
    EXPECT_EQ(refused.exitCode, 1);
    const QByteArray fingerprint = refused.errors.trimmed().right(95);
    EXPECT_EQ(verify("--trust-certificate " + fingerprint.toLower()).exitCode, 0)
        << fingerprint.toStdString();
}

TEST(CommandLine, RefusesWhatMakesNoSense)
{
    const QString nonsense
        = u"|show|show 1 2|timeline --count|timeline --count many|timeline --count -1|public --count 3|"
          "verify --reply-to 3|--json=yes verify|timeline --count=|--nonsense verify|-x verify|verify --account --json|verify --password-stdin"_s;
    for (const QString& line : nonsense.split(u'|'))
        EXPECT_TRUE(CommandLine::parse(line.split(u' ', Qt::SkipEmptyParts)).isError()) << qPrintable(line);
    const auto send = CommandLine::parse({ u"--account=a=b"_s, u"send"_s, u"@bob"_s, u"@carol says"_s });
    EXPECT_EQ(send.value().account, u"a=b"_s);
    EXPECT_EQ(send.value().arguments, (QStringList { u"bob"_s, u"@carol says"_s }));
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

static QByteArray outputOf(const QByteArray& command)
{
    std::FILE* const pipe = ::popen(command.constData(), "r");
    QFile file;
    const QByteArray output = file.open(pipe, QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    ::pclose(pipe);
    return output.trimmed();
}

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

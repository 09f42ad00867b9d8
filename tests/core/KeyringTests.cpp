#include "KRTestAccount.h"
#include "core/EMKeychainProxy.h"
#include "core/KRKeychain.h"
#include "core/KRSecretService.h"

#include <QElapsedTimer>

#include <cstdlib>

// Runs inside a session bus of its own with a real keyring, see tests/support/with-and-without-keyring.

namespace {

// A keyring on a busy machine takes its time.
constexpr KRClock::Duration patience = 30s;

/// Gives the service time, and ends its threads as the program does.
class Ending final : public testing::Environment {
public:
    void SetUp() override { KRSecretService::setAnswerLimit(patience); }
    void TearDown() override
    {
        KRSecretService::stop();
        // What is still to run on the main thread when the program ends may ask all the same.
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(KRSecretService::lookUp({}).status, KRSecretService::Status::Unavailable);
        EXPECT_LT(timer.elapsed(), patience.count() / 2);
    }
};
[[maybe_unused]] const testing::Environment* const ending = testing::AddGlobalTestEnvironment(new Ending);

const QString service = u"com.kestrin.pelinor-test"_s;
const QString keychainService = QString::fromUtf16(TwitterAccount::keychainService);

KRSecretService::Attributes attributesOf(const QString& account)
{
    return { { u"service"_s, service }, { u"account"_s, account } };
}

/// The password of one of the program's accounts.
QString inKeychain(const QString& name)
{
    return KRKeychain::passwordForUsername(name, keychainService, nullptr);
}

class Keyring : public KRTestProgram {
protected:
    /// An open keyring instead of the locked one, as after the user's password in the desktop's prompt; the
    /// daemon is a new one, as after an update of it. Waits until that was told and the condition holds.
    template <class Condition>
    void unlockLikeTheUser(Condition condition)
    {
        ASSERT_EQ(std::system(PELINOR_REOPEN_KEYRING), 0);
        const KRTestCounter<KRKeychainDidUnlockNotification> told;
        EXPECT_TRUE(KRWaitUntil([&] {
            // The prompt that nobody could answer may still be ending; whoever asks again then succeeds.
            if (told.count == 0)
                EMKeychainProxy::sharedProxy().unlockKeychain();
            return told.count > 0 && condition();
        })) << m_log.lines().join(u'\n').toStdString();
        KRRunLoop::main().runPending();
        EXPECT_EQ(told.count, 1) << "many waited for one unlocking";
        EMKeychainProxy::sharedProxy().unlockKeychain();
        EXPECT_TRUE(KRWaitUntil([&] { return told.count == 2; })) << "it is open, whoever asks again";
    }
};

} // namespace

TEST_F(Keyring, StoresFindsAndReplaces)
{
    EXPECT_TRUE(KRKeychain::passwordForUsername(u"alice"_s, service, nullptr).isNull());
    EXPECT_TRUE(KRKeychain::passwordForUsername(u""_s, service, nullptr).isNull());
    const QString password = u"w\u00f6nderland \U0001f407 \"quoted\""_s;
    ASSERT_FALSE(KRKeychain::setPassword(u"first"_s, u"alice"_s, service).isError());
    ASSERT_FALSE(KRKeychain::setPassword(password, u"alice"_s, service).isError());
    ASSERT_FALSE(KRKeychain::setPassword(u"other"_s, u"bob"_s, service).isError());
    EXPECT_EQ(KRKeychain::passwordForUsername(u"alice"_s, service, nullptr), password);
    EXPECT_EQ(KRKeychain::passwordForUsername(u"bob"_s, service, nullptr), u"other"_s);
    EXPECT_EQ(m_log.lines(), QStringList()) << "nobody asked for errors";
    // Replaced, not added: when the one item has gone, none is left.
    ASSERT_EQ(KRSecretService::remove(attributesOf(u"alice"_s)).status, KRSecretService::Status::Done);
    EXPECT_TRUE(KRKeychain::passwordForUsername(u"alice"_s, service, nullptr).isNull());
}

TEST_F(Keyring, StartsNoBusWhereThereIsNone)
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", "/nonexistent");
    const KRSecretService::Answer answer = KRSecretService::lookUp(attributesOf(u"bob"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    qputenv("XDG_RUNTIME_DIR", runtime);
    EXPECT_EQ(answer.status, KRSecretService::Status::Unavailable);
    EXPECT_EQ(answer.error, u"there is no session bus"_s);
}

TEST_F(Keyring, ChangesStoredItems)
{
    EMKeychainProxy& proxy = EMKeychainProxy::sharedProxy();
    EXPECT_EQ(proxy.addGenericKeychainItemForService(service, u""_s, u"x"_s), nullptr);
    EXPECT_EQ(proxy.addGenericKeychainItemForService(u""_s, u"carol"_s, u"x"_s), nullptr);
    const auto item = proxy.addGenericKeychainItemForService(service, u"carol"_s, u"one"_s);
    ASSERT_TRUE(item);
    EXPECT_FALSE(item->setPassword(QString()));
    EXPECT_TRUE(item->setPassword(u"two"_s));
    EXPECT_TRUE(item->setUsername(u"caroline"_s));
    EXPECT_TRUE(item->setLabel(u"Caroline's password"_s));
    EXPECT_EQ(item->label(), u"Caroline's password"_s);
    EXPECT_EQ(proxy.genericKeychainItemForService(service, u"carol"_s), nullptr);
    ASSERT_TRUE(proxy.genericKeychainItemForService(service, u"caroline"_s));
    EXPECT_EQ(proxy.genericKeychainItemForService(service, u"caroline"_s)->password(), u"two"_s);

    EMInternetKeychainLocation location { u"example.org"_s, u"/api"_s, 443, u"https"_s };
    const auto internet = proxy.addInternetKeychainItemForServer(location, u"dave"_s, u"three"_s);
    ASSERT_TRUE(internet);
    EXPECT_TRUE(internet->setPort(8443));
    EXPECT_EQ(proxy.internetKeychainItemForServer(location, u"dave"_s), nullptr);
    location.port = 8443;
    ASSERT_TRUE(proxy.internetKeychainItemForServer(location, u"dave"_s));
    EXPECT_EQ(proxy.internetKeychainItemForServer(location, u"dave"_s)->password(), u"three"_s);
}

TEST_F(Keyring, KeepsItsPasswordInTheKeychainOnly)
{
    add(*makeTwitter(), u"erin"_s, u"top secret"_s);
    const QByteArray stored = KRTestContent(m_directory.filePath(u"pelinor.ini"_s));
    EXPECT_TRUE(stored.contains("accounts") && !stored.contains("secret"));
    const auto twitter = makeTwitter();
    ASSERT_EQ(twitter->accounts().size(), 1);
    EXPECT_EQ(twitter->accounts().first()->password(), u"top secret"_s);
    EXPECT_EQ(m_log.lines(), QStringList()) << "all went well";
}

TEST_F(Keyring, OnlyWhatCouldNotBeStoredIsStoredOnceTheKeyringIsOpen)
{
    add(*makeTwitter(), u"frank"_s, u"locked in"_s);
    add(*makeTwitter(), u"fred"_s, u"too"_s);
    ASSERT_TRUE(EMKeychainProxy::sharedProxy().lockKeychain());
    EMKeychainProxy::sharedProxy().setLogsErrors(true);
    QElapsedTimer timer;
    timer.start();
    const auto twitter = makeTwitter();
    EXPECT_LT(timer.elapsed(), patience.count()) << "nobody waits for a person";
    ASSERT_EQ(twitter->accounts().size(), 2);
    const TwitterAccountPtr frank = twitter->accounts()[0];
    EXPECT_TRUE(frank->password().isNull());

    // Storing fails now, with the error for that; the password lives in memory.
    const KRResult<void> stored = KRKeychain::setPassword(u"new"_s, u"grace"_s, service);
    ASSERT_TRUE(stored.isError());
    EXPECT_EQ(stored.error(),
        errorWithDomain(u"com.kestrin.keychain"_s, -1, u"could not store item in keychain"_s));
    EXPECT_TRUE(
        m_log.contains(u"Critical Error: could not store item in keychain. Try repairing your keychain and "
                       "repairing permissions. (Service: \"com.kestrin.pelinor-test\""_s));
    const KRResult<void> removed = KRKeychain::removePasswordForUsername(u"frank"_s, keychainService);
    ASSERT_TRUE(removed.isError());
    EXPECT_EQ(removed.error(),
        errorWithDomain(u"com.kestrin.keychain"_s, -1, u"could not remove item from keychain"_s));
    const TwitterAccountPtr refused = add(*twitter, u"heidi"_s, u"refused"_s);
    const TwitterAccountPtr withdrawn = add(*twitter, u"ivan"_s, u"withdrawn"_s);
    EXPECT_FALSE(withdrawn->removePasswordFromKeychain().isError()) << "nothing of it is stored";
    const TwitterAccountPtr empty = add(*twitter, u"judy"_s, {});
    const TwitterAccountPtr beingChecked
        = TwitterAccount::accountWithUsername(u"mallory"_s, u"a guess"_s, twitter->accountContext());

    unlockLikeTheUser(
        [&] { return frank->password() == u"locked in" && twitter->accounts()[1]->password() == u"too"; });
    EXPECT_EQ(inKeychain(u"heidi"_s), u"refused"_s);
    for (const QString& name : { u"ivan"_s, u"judy"_s, u"mallory"_s })
        EXPECT_TRUE(inKeychain(name).isNull()) << name.toStdString();

    // What is stored is taken out again, and what is not there is no trouble.
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(refused->removePasswordFromKeychain().isError());
    EXPECT_TRUE(inKeychain(u"heidi"_s).isNull());
    EXPECT_EQ(refused->password(), u"refused"_s);
    twitter->removeAccount(frank);
    EXPECT_EQ(inKeychain(u"frank"_s), u"locked in"_s) << "removing an account leaves its password";
}

TEST_F(Keyring, WhatIsTakenOutOfALockedKeyringGoesOnceItIsOpen)
{
    for (const QString& name : { u"nick"_s, u"nora"_s })
        add(*makeTwitter(), name, u"stored"_s);
    ASSERT_TRUE(EMKeychainProxy::sharedProxy().lockKeychain());
    const auto twitter = makeTwitter();
    const TwitterAccountPtr kept = twitter->accounts().first();
    for (const TwitterAccountPtr& account : QList<TwitterAccountPtr>(twitter->accounts())) {
        twitter->removeAccount(account);
        EXPECT_TRUE(account->removePasswordFromKeychain().isError());
    }
    // One of them is there again.
    add(*twitter, u"nora"_s, u"new"_s);
    unlockLikeTheUser([] { return true; });
    EXPECT_TRUE(kept->password().isNull()) << "nobody asks for anything with it any more";
    EXPECT_TRUE(inKeychain(u"nick"_s).isNull());
    EXPECT_EQ(inKeychain(u"nora"_s), u"new"_s);
}

TEST_F(Keyring, HandsItsPasswordOverWithEverySaveButNotForEveryChange)
{
    const auto twitter = makeTwitter();
    const TwitterAccountPtr account = add(*twitter, u"kim"_s, u"first"_s);
    KRManualClock clock;
    ASSERT_FALSE(KRKeychain::setPassword(u"by hand"_s, u"kim"_s, keychainService).isError());
    account->setNotificationOptions(0x8);
    clock.advance(Twitter::saveDelay);
    EXPECT_EQ(inKeychain(u"kim"_s), u"by hand"_s);
    account->setPassword(u"second"_s);
    clock.advance(Twitter::saveDelay);
    EXPECT_EQ(inKeychain(u"kim"_s), u"second"_s);
    ASSERT_FALSE(KRKeychain::setPassword(u"by hand"_s, u"kim"_s, keychainService).isError());
    twitter->shutdown();
    EXPECT_EQ(inKeychain(u"kim"_s), u"second"_s);
}

// Before anybody meets a keyring that does not answer.
TEST_F(Keyring, TellsOnceThatNobodyKeepsPasswords)
{
    KRManualClock clock;
    const KRTestCounter<KRKeychainUnavailableNotification> told;
    KRKeychain::noteUnavailable(u"test"_s);
    EXPECT_EQ(told.count, 0) << "whoever shows it may not have been made yet";
    clock.advance(1s);
    EXPECT_EQ(told.count, 1);
    KRKeychain::noteUnavailable(u"test"_s);
    clock.advance(9s);
    EXPECT_EQ(told.count, 1);
    EXPECT_EQ(m_log.lines(),
        QStringList(
            u"Warning: no Secret Service answers (test); passwords are kept in memory for this run"_s));
}

TEST_F(Keyring, AStuckServiceKeepsNobodyElseWaitingAndIsAskedAgainOnceItAnswers)
{
    for (const QString& name : { u"peggy"_s, u"paul"_s })
        add(*makeTwitter(), name, u"stored"_s);
    ASSERT_EQ(std::system(PELINOR_REOPEN_KEYRING " STOP"), 0);
    const auto askForBob = [] { return KRSecretService::lookUp(attributesOf(u"bob"_s)); };
    QElapsedTimer timer;
    timer.start();
    KRSecretService::setAnswerLimit(1s);
    EXPECT_EQ(askForBob().status, KRSecretService::Status::Unavailable);
    KRSecretService::setAnswerLimit(patience);
    EXPECT_GE(timer.restart(), 500);
    EXPECT_EQ(askForBob().error, u"the Secret Service does not answer"_s);
    const auto twitter = makeTwitter();
    EXPECT_LT(timer.elapsed(), patience.count() / 2);
    ASSERT_EQ(std::system(PELINOR_REOPEN_KEYRING " CONT"), 0);
    EXPECT_TRUE(KRWaitUntil([&] { return askForBob().status == KRSecretService::Status::Done; }));
    ASSERT_EQ(twitter->accounts().size(), 2);
    for (const TwitterAccountPtr& account : twitter->accounts()) {
        EXPECT_TRUE(account->password().isNull());
        account->refresh();
        EXPECT_EQ(account->password(), u"stored"_s) << "a program that starts before its keyring";
    }
}

TEST_F(Keyring, WhatIsOpenedIsTheKeyringThatTheItemLiesIn)
{
    const KRSecretService::Attributes attributes = attributesOf(u"olivia"_s);
    ASSERT_EQ(KRSecretService::store(attributes, u"test"_s, u"old"_s).status, KRSecretService::Status::Done);
    // A second keyring of the same content, which nobody opens.
    const QString folder = qEnvironmentVariable("PELINOR_TEST_HOME") + u"/data/keyrings/"_s;
    ASSERT_TRUE(QFile::copy(folder + u"login.keyring"_s, folder + u"old.keyring"_s));
    ASSERT_EQ(std::system(PELINOR_REOPEN_KEYRING), 0);
    EXPECT_EQ(KRSecretService::lookUp(attributes).password, u"old"_s) << "an open keyring comes first";
    ASSERT_EQ(KRSecretService::remove(attributes).status, KRSecretService::Status::Done);
    const KRSecretService::Answer locked = KRSecretService::lookUp(attributes);
    ASSERT_EQ(locked.status, KRSecretService::Status::Locked);
    const auto isOpened = [](const QString& item) {
        std::optional<bool> answer;
        KRSecretService::unlockInBackground(item, [&](bool isUnlocked) { answer = isUnlocked; });
        EXPECT_TRUE(KRWaitUntil([&] { return answer.has_value(); }));
        return answer.value_or(false);
    };
    EXPECT_TRUE(isOpened({}));
    EXPECT_FALSE(isOpened(locked.item)) << "else whoever waits would look in vain, and ask again for ever";
    EXPECT_TRUE(QFile::remove(folder + u"old.keyring"_s));
}

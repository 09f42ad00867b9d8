#include "foundation/KRFileManager.h"
#include "foundation/KRFiles.h"
#include "foundation/KRUserDefaults.h"
#include "support/KRTest.h"

constexpr auto ownerOnly
    = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadUser | QFileDevice::WriteUser;

TEST(KRUserDefaults, KeepsValuesAcrossInstancesInAPrivateFile)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"deep/pelinor.ini"_s);
    {
        KRUserDefaults defaults(path);
        EXPECT_TRUE(defaults.integerForKey("absent") == 0 && !defaults.boolForKey("absent"));
        EXPECT_TRUE(defaults.stringForKey("absent").isNull());
        defaults.setString("text", u"a, \"b\" \u00e9\n;#"_s);
        defaults.setData("data", QByteArray("\0\n\xff,;", 5));
        defaults.setInteger("number", -7);
        defaults.setInteger("flag", 1);
        defaults.setStringList("list", { u"x,y"_s, u"z"_s });
        defaults.setString("ServiceHosts/RESTHost", u"example.org/api"_s);
        ASSERT_FALSE(defaults.synchronize().isError());
    }
    EXPECT_EQ(QFile::permissions(path), ownerOnly);
    KRUserDefaults defaults(path);
    EXPECT_EQ(defaults.stringForKey("text"), u"a, \"b\" \u00e9\n;#"_s);
    EXPECT_EQ(defaults.dataForKey("data"), QByteArray("\0\n\xff,;", 5));
    EXPECT_EQ(defaults.integerForKey("number"), -7);
    EXPECT_TRUE(defaults.boolForKey("flag"));
    EXPECT_EQ(defaults.stringListForKey("list"), (QStringList { u"x,y"_s, u"z"_s }));
    EXPECT_EQ(defaults.keysInGroup(u"ServiceHosts"_s), QStringList { u"RESTHost"_s });
}

TEST(KRUserDefaults, AFailedWriteIsAnErrorOnce)
{
    const QTemporaryDir directory;
    const QString folder = directory.filePath(u"settings"_s);
    const QString path = folder + u"/pelinor.ini"_s;
    KRUserDefaults defaults(path);
    ASSERT_FALSE(defaults.synchronize().isError());
    // Where the folder was there is a file now.
    const QString moved = directory.filePath(u"moved"_s);
    ASSERT_TRUE(QFile::rename(folder, moved));
    ASSERT_TRUE(QFile(folder).open(QIODevice::WriteOnly));
    defaults.setInteger("number", 7);
    EXPECT_TRUE(defaults.synchronize().isError());
    EXPECT_TRUE(defaults.synchronize().isError()) << "nothing has been written yet";
    ASSERT_TRUE(QFile::remove(folder));
    ASSERT_TRUE(QFile::rename(moved, folder));
    EXPECT_FALSE(defaults.synchronize().isError());
    EXPECT_EQ(KRUserDefaults(path).integerForKey("number"), 7);
}

TEST(KRUserDefaults, SetsAsideWhatCannotBeReadUnderANewNameEachTime)
{
    KRTestLog log;
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"pelinor.ini"_s);
    const QByteArray garbage("\x01\x02 no preferences at all [[[\n\xff\xfe=\n[");
    ASSERT_FALSE(KRWriteFileAtomically(path, garbage).isError());
    KRUserDefaults defaults(path);
    EXPECT_EQ(KRTestContent(path + u".unreadable"_s), garbage);
    EXPECT_TRUE(log.contains(u"set aside"_s));
    for (const char* content : { "first", "second" }) {
        defaults.setData("accounts", content);
        defaults.setAsideUnreadableData(u"accounts"_s);
    }
    ASSERT_FALSE(defaults.synchronize().isError());
    const KRUserDefaults again(path);
    EXPECT_FALSE(again.contains("accounts"));
    EXPECT_EQ(again.dataForKey("accounts.unreadable"), QByteArray("first"));
    EXPECT_EQ(again.dataForKey("accounts.unreadable-2"), QByteArray("second"));
}

TEST(KRFiles, ReplacesAFileOrLeavesItAndSaysWhy)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"file"_s);
    ASSERT_FALSE(KRWriteFileAtomically(path, "one").isError());
    ASSERT_FALSE(KRWriteFileAtomically(path, "two").isError());
    EXPECT_EQ(KRTestContent(path), QByteArray("two"));
    EXPECT_EQ(QFile::permissions(path), ownerOnly);
    const auto failed = KRWriteFileAtomically(directory.filePath(u"no/such/folder"_s), "x");
    ASSERT_TRUE(failed.isError());
    EXPECT_TRUE(failed.error().description.contains(u"no/such/folder"));
}

TEST(KRFileManager, MakesPrivateDirectoriesInTheRightPlaces)
{
    const QString cache = qEnvironmentVariable("XDG_CACHE_HOME");
    const QString own = cache + u"/com.kestrin."_s;
    EXPECT_EQ(KRFileManager::miscCacheDirectory(), own + u"pelinor.misc"_s);
    const QString state = KRFileManager::applicationStateDirectory();
    EXPECT_TRUE(state.startsWith(KRFileManager::documentsDirectory() + u"/com.kestrin.pelinor."_s));
    EXPECT_TRUE(QDir(state).exists());
    EXPECT_FALSE(
        QFile::permissions(KRFileManager::miscCacheDirectory()) & (QFile::ReadGroup | QFile::ReadOther));

    KRTestLog log;
    const QString nested = cache + u"/missing/below"_s;
    EXPECT_EQ(KRFileManager::createDirectoryIfNonExistent(nested), nested);
    EXPECT_FALSE(QDir(nested).exists()) << "one directory is made, not its parents";
    EXPECT_TRUE(log.contains(u"could not be made"_s));
}

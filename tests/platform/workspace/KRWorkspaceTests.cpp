#include "platform/workspace/KRWorkspace.h"
#include "support/KRTest.h"

// The desktop's opener is told the whole address as one argument and nothing of a user who is waiting for it.
TEST(KRWorkspaceTests, OpensBehindTheProgram)
{
    QTemporaryDir folder;
    const QString opener = folder.filePath(u"xdg-open"_s);
    QFile script(opener);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s\\n' $# \"$1\" \"$DESKTOP_STARTUP_ID\" "
                 "\"${XDG_ACTIVATION_TOKEN-none}\" >\"$0.new\"\n"
                 "mv \"$0.new\" \"$0.done\"\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.path().toUtf8() + ':' + path);
    qputenv("XDG_ACTIVATION_TOKEN", "token");
    EXPECT_TRUE(KRDesktopWorkspace().openURL(QUrl(u"http://example.org/a b?c=$(d)&e"_s),
        KRWorkspace::Launch::InBackground));
    QFile done(opener + u".done"_s);
    EXPECT_TRUE(KRWaitUntil([&] { return done.exists(); }));
    ASSERT_TRUE(done.open(QIODevice::ReadOnly));
    EXPECT_EQ(done.readAll(), "1\nhttp://example.org/a%20b?c=$(d)&e\npelinor_TIME0\nnone\n");
    qputenv("PATH", path);
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

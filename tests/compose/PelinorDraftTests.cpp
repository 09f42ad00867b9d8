#include "compose/PelinorDraftKeeper.h"
#include "compose/UsernameAutocompletionDelegate.h"
#include "foundation/KRKeyedArchiver.h"
#include "model/records/KRTestRecords.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"
#include "support/KRTestWait.h"

#include <QDir>
#include <QTemporaryDir>

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

PelinorDraft draftOf(const QString& text, const QStringList& files = {})
{
    PelinorDraft draft;
    draft.text = text;
    qsizetype location = -1;
    for (const QString& file : files) {
        location = text.indexOf(PelinorAttachmentCharacter, location + 1);
        draft.attachments.append({ location, file });
    }
    return draft;
}

class PelinorDraftTest : public testing::Test {
protected:
    std::shared_ptr<PelinorDraftStore> store() const
    {
        return std::make_shared<PelinorDraftStore>(folder, attachments);
    }
    QStringList files() const { return QDir(folder).entryList({ u"*.draft*"_s }, QDir::Files); }
    /// The only draft there is.
    QByteArray read() const
    {
        QFile file(folder + u'/' + files().value(0));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString write(const QString& path, const QByteArray& content = "x") const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    KRTestLog log;
    KRManualClock clock;
    QTemporaryDir directory;
    QString folder = directory.filePath(u"drafts"_s);
    QString attachments = directory.filePath(u"pictures"_s);
};

} // namespace

TEST_F(PelinorDraftTest, EveryAttachmentWeighsAsMuchAsItsLink)
{
    const auto shown = [](const PelinorDraft& draft, qsizetype longest) {
        const PelinorDraftCount count(draft, longest);
        return u"%1%2"_s.arg(count.remaining).arg(count.isOver() ? u" over"_s : QString());
    };
    EXPECT_EQ(shown(draftOf(QString(140, u'x')), 140), u"0"_s);
    EXPECT_EQ(shown(draftOf(u"\U0001f600"_s.repeated(70) + u'x'), 140), u"-1 over"_s);
    EXPECT_EQ(shown(draftOf(QString(98, u'x') + u"\ufffc\ufffc"_s, { u"a"_s, u"b"_s }), 140), u"-20 over"_s);
    EXPECT_EQ(shown(draftOf(QString(9000, u'x')), 0), u"-9000"_s) << "no limit";
}

TEST_F(PelinorDraftTest, AFewKeysAreNothingToAskAbout)
{
    const struct {
        QString initial;
        QString edits;
        bool isEdited;
    } cases[] = {
        { u""_s, u"a|ab|abc"_s, false },
        { u""_s, u"a|ab|ab|abc|abcd"_s, true },
        { u"@b "_s, u"@b a|@b ab"_s, false },
        { u"@b "_s, u"@b a|@b ab|@b abc"_s, true },
        { u"@b "_s, u"@b a|@b |@b a|@b "_s, false },
        { u""_s, u"words from the clipboard"_s, true },
        { u""_s, u"\ufffc"_s, true },
    };
    for (const auto& test : cases) {
        PelinorDraftEdits edits;
        edits.begin(draftOf(test.initial), false);
        EXPECT_FALSE(edits.isChanged());
        for (const QString& text : test.edits.split(u'|'))
            edits.note(draftOf(text, QStringList(text.count(u'\ufffc'), u"a.png"_s)));
        EXPECT_EQ(edits.isEdited(), test.isEdited) << qPrintable(test.edits);
        edits.begin(draftOf(test.initial), true);
        EXPECT_TRUE(edits.isChanged() && edits.isEdited()) << "by an earlier run";
    }
}

TEST_F(PelinorDraftTest, OnlyPicturesAndMoviesCanBeAttached)
{
    using Kind = PelinorAttachment::Kind;
    const auto kind = [this](const QString& name, const QByteArray& content) {
        return PelinorAttachment::kindOfFile(write(directory.filePath(name), content));
    };
    EXPECT_EQ(kind(u"a.png"_s, "no picture at all"), Kind::Picture);
    EXPECT_EQ(kind(u"a.mov"_s, "x"), Kind::Movie);
    EXPECT_EQ(kind(u"without-ending"_s, "\x89PNG\r\n\x1a\n"), Kind::Picture);
    EXPECT_EQ(kind(u"a.txt"_s, "words"), Kind::None);
    EXPECT_EQ(PelinorAttachment::kindOfFile(directory.filePath(u"gone.png"_s)), Kind::None);
}

TEST_F(PelinorDraftTest, IsWrittenInAPauseAndFoundByTheNextRun)
{
    PelinorDraft draft = draftOf(u"one \ufffc\ufffc\ufffc \U0001f600"_s, { u"/p/a.png"_s, u"/p/b.png"_s });
    const TwitterUserPtr bob = KRTestUser(u"7"_s, u"bob"_s);
    bob->setFullName(u"Bob B."_s);
    draft.setInReplyTo(KRTestStatus(u"42"_s, bob).get());
    draft.accountName = u"alice"_s;
    EXPECT_EQ(draft.replyPrefix(), u"@bob "_s);
    auto first = store();
    EXPECT_TRUE(first->takeLeftDrafts().isEmpty());
    {
        PelinorDraftKeeper keeper(first);
        keeper.keep(draftOf(u"on"_s));
        clock.advance(PelinorDraftKeeper::pause - 1ms);
        keeper.keep(draft);
        clock.advance(PelinorDraftKeeper::pause - 1ms);
        EXPECT_TRUE(files().isEmpty()) << "still writing";
        clock.advance(1ms);
        ASSERT_TRUE(KRWaitUntil([&] { return files().size() == 1; }));
        const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        EXPECT_EQ(QFile::permissions(folder + u'/' + files()[0]) & others, QFile::Permissions());
        EXPECT_TRUE(store()->takeLeftDrafts().isEmpty()) << "another program is responsible for them";
    }
    PelinorDraft message;
    message.setRecipient(bob.get());
    EXPECT_EQ(message.recipientID + message.recipientUsername, u"7bob"_s);
    message.mayHaveGoneOut = true;
    PelinorDraftKeeper(first).keepNow(message);
    first.reset();

    const auto second = store();
    const QList<PelinorDraftStore::Stored> found = second->takeLeftDrafts();
    ASSERT_EQ(found.size(), 2);
    message.text = u""_s;
    EXPECT_EQ(found[found[0].draft.isDirectMessage].draft, draft);
    EXPECT_EQ(found[!found[0].draft.isDirectMessage].draft, message);
    EXPECT_TRUE(second->takeLeftDrafts().isEmpty()) << "once";
    for (const auto& stored : found)
        PelinorDraftKeeper(second, stored.file).forget();
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(PelinorDraftTest, IsWrittenAlsoWithoutAPauseAndWhenItsWindowGoes)
{
    const auto first = store();
    {
        PelinorDraftKeeper keeper(first);
        for (int round = 0; round < 16 && files().isEmpty(); ++round) {
            keeper.keep(draftOf(QString::number(round)));
            clock.advance(200ms);
        }
        ASSERT_TRUE(KRWaitUntil([&] { return !files().isEmpty(); }));
        keeper.keep(draftOf(u"last words"_s));
    }
    const auto left = store()->takeLeftDrafts();
    ASSERT_EQ(left.size(), 1);
    EXPECT_EQ(left[0].draft.text, u"last words"_s);
    PelinorDraftKeeper keeper(first, left[0].file);
    keeper.keep(draftOf(u"not wanted"_s));
    keeper.forget();
    keeper.keepNow(draftOf(u"late"_s));
    EXPECT_FALSE(left[0].file->write(99, draftOf(u"from another thread"_s)).isError());
    clock.advance(PelinorDraftKeeper::longestWait);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(PelinorDraftTest, AFullDiskIsToldAndTriedAgain)
{
    std::optional<PelinorDraftKeeper> keeper(store());
    QStringList told;
    keeper->setFailureHandler(
        [&](const std::optional<KRError>& error) { told.append(error ? u"failed"_s : u"kept"_s); });
    keeper->keepNow(draftOf(u"before"_s));
    const QByteArray before = read();
    std::signal(SIGXFSZ, SIG_IGN);
    const auto limitFiles = [](rlim_t size) {
        const rlimit limit { size, RLIM_INFINITY };
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    };
    limitFiles(8);
    keeper->keep(draftOf(u"words"_s));
    clock.advance(PelinorDraftKeeper::pause);
    const bool isTold = KRWaitUntil([&] { return told.size() == 1; });
    limitFiles(RLIM_INFINITY);
    ASSERT_TRUE(isTold);
    EXPECT_EQ(read(), before) << "rather than half of the new one";
    clock.advance(PelinorDraftKeeper::retryDelay);
    ASSERT_TRUE(KRWaitUntil([&] { return told.size() == 2; }));
    EXPECT_EQ(told.join(u' '), u"failed kept"_s);
    EXPECT_TRUE(read().contains("words"));
    ASSERT_TRUE(QFile::remove(folder + u'/' + files()[0]));
    keeper.reset();
    EXPECT_TRUE(files().isEmpty()) << "what has been written is not written again";
}

TEST_F(PelinorDraftTest, WhatCannotBeReadIsSetAsideAndWhatNobodyNeedsGoes)
{
    const auto first = store();
    const QString kept = write(first->newAttachmentPath(u"png"_s));
    const QString abandoned = write(first->newAttachmentPath(u"mp4"_s));
    const QString foreign = write(directory.filePath(u"my.png"_s));
    PelinorDraftKeeper(first).keepNow(draftOf(u"\ufffc"_s, { kept }));
    write(folder + u"/half.draft.Ab12Cd"_s);
    const QList<PelinorDraftStore::Stored> found = store()->takeLeftDrafts();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(files().size(), 1) << "the half that a killed program wrote is gone";
    EXPECT_TRUE(QFile::exists(kept));
    EXPECT_FALSE(QFile::exists(abandoned));
    const QString undone = write(first->newAttachmentPath(u"png"_s));
    {
        PelinorDraftKeeper keeper(first, found[0].file);
        keeper.keep(draftOf(u"\ufffc\ufffc\ufffc"_s, { kept, undone, foreign }));
        keeper.keep(draftOf(u""_s));
        keeper.forget();
    }
    EXPECT_FALSE(QFile::exists(undone));
    EXPECT_TRUE(QFile::exists(foreign)) << "it is the user's";

    KRKeyedArchiver other;
    other.encodeInteger("x"_L1, 1);
    write(folder + u"/other.draft"_s, other.archivedData());
    write(folder + u"/cut.draft"_s, "KRKA");
    write(kept);
    EXPECT_TRUE(store()->takeLeftDrafts().isEmpty());
    EXPECT_EQ(files().join(u' '), u"cut.draft.unreadable other.draft.unreadable"_s);
    EXPECT_TRUE(QFile::exists(kept)) << "a draft that was set aside may need it";
}

TEST_F(PelinorDraftTest, ANameIsCompletedAtItsEndAlone)
{
    const std::pair<QString, QString> cases[] = {
        { u"@b|"_s, u"b"_s },
        { u"to @bo_1|, hello"_s, u"bo_1"_s },
        { u"@|"_s, u"none"_s },
        { u"@b|ob"_s, u"none"_s },
        { u"me@example|"_s, u"none"_s },
        { u"me_@b|"_s, u"none"_s },
        { u"@1|"_s, u"none"_s },
        { u"bob|"_s, u"none"_s },
    };
    for (auto [text, name] : cases) {
        const qsizetype cursor = text.indexOf(u'|');
        text.remove(cursor, 1);
        const auto found = UsernameAutocompletionDelegate::nameBefore(text, cursor);
        EXPECT_EQ(found ? KRSubstring(text, *found) : u"none"_s, name) << qPrintable(text);
    }
}

#include "compose/PelinorDraft.h"

#include "foundation/KRKeyedArchiver.h"
#include "model/records/TwitterStatus.h"
#include "text/KRActiveTextRanges.h"

#include <QFileInfo>
#include <QMimeDatabase>

using namespace Qt::StringLiterals;

PelinorAttachment::Kind PelinorAttachment::kindOfFile(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return Kind::None;
    const QString type = QMimeDatabase().mimeTypeForFile(path).name();
    return type.startsWith("image/"_L1) ? Kind::Picture
        : type.startsWith("video/"_L1)  ? Kind::Movie
                                        : Kind::None;
}

void PelinorDraft::setInReplyTo(const TwitterStatus* status)
{
    const TwitterUserPtr author = status ? status->fromUser() : nullptr;
    inReplyToStatusID = status ? status->statusID() : QString();
    inReplyToUsername = author ? author->username() : QString();
    inReplyToFullName = author ? author->fullName() : QString();
}

void PelinorDraft::setRecipient(const TwitterUser* user)
{
    isDirectMessage = isDirectMessage || user;
    recipientID = user ? user->userID() : QString();
    recipientUsername = user ? user->username() : QString();
}

QString PelinorDraft::replyPrefix() const
{
    return isDirectMessage || inReplyToUsername.isEmpty() ? QString() : u"@%1 "_s.arg(inReplyToUsername);
}

void PelinorDraft::replaceLastAttachment(const QString& link)
{
    const PelinorAttachment attachment = attachments.takeLast();
    text.replace(attachment.location, 1, u' ' + link + u' ');
}

void PelinorDraft::encodeWithCoder(KRKeyedArchiver& coder) const
{
    // An empty text is written too: it tells a draft from another archive.
    coder.encodeString("text"_L1, text.isNull() ? u""_s : text);
    QStringList filenames;
    QStringList locations;
    for (const PelinorAttachment& attachment : attachments) {
        filenames.append(attachment.filename);
        locations.append(QString::number(attachment.location));
    }
    coder.encodeStrings("filenames"_L1, filenames);
    coder.encodeStrings("locations"_L1, locations);
    coder.encodeString("accountName"_L1, accountName);
    coder.encodeString("inReplyToStatusID"_L1, inReplyToStatusID);
    coder.encodeString("inReplyToUsername"_L1, inReplyToUsername);
    coder.encodeString("inReplyToFullName"_L1, inReplyToFullName);
    coder.encodeString("recipientID"_L1, recipientID);
    coder.encodeString("recipientUsername"_L1, recipientUsername);
    coder.encodeInteger("isDirectMessage"_L1, isDirectMessage ? 1 : 0);
    coder.encodeInteger("mayHaveGoneOut"_L1, mayHaveGoneOut ? 1 : 0);
}

std::optional<PelinorDraft> PelinorDraft::draftWithCoder(const KRKeyedUnarchiver& coder)
{
    PelinorDraft draft;
    draft.text = coder.decodeString("text"_L1);
    if (draft.text.isNull())
        return std::nullopt;
    const QStringList filenames = coder.decodeStrings("filenames"_L1);
    const QStringList locations = coder.decodeStrings("locations"_L1);
    for (qsizetype index = 0; index < filenames.size(); ++index) {
        const qsizetype location = locations.value(index).toLongLong();
        const qsizetype least = draft.attachments.isEmpty() ? 0 : draft.attachments.last().location + 1;
        if (location >= least && location < draft.text.size()
            && draft.text[location] == PelinorAttachmentCharacter)
            draft.attachments.append({ location, filenames[index] });
    }
    draft.accountName = coder.decodeString("accountName"_L1);
    draft.inReplyToStatusID = coder.decodeString("inReplyToStatusID"_L1);
    draft.inReplyToUsername = coder.decodeString("inReplyToUsername"_L1);
    draft.inReplyToFullName = coder.decodeString("inReplyToFullName"_L1);
    draft.recipientID = coder.decodeString("recipientID"_L1);
    draft.recipientUsername = coder.decodeString("recipientUsername"_L1);
    draft.isDirectMessage = coder.decodeInteger("isDirectMessage"_L1).value_or(0) != 0;
    draft.mayHaveGoneOut = coder.decodeInteger("mayHaveGoneOut"_L1).value_or(0) != 0;
    return draft;
}

void PelinorDraftEdits::begin(const PelinorDraft& draft, bool wasLeft)
{
    m_initialText = draft.text;
    m_text = draft.text;
    m_wasLeft = wasLeft;
    // What the window wrote was an edit too.
    m_editCount = draft.isEmpty() ? 0 : 1;
}

void PelinorDraftEdits::note(const PelinorDraft& draft)
{
    m_editCount += draft.text == m_text ? 0 : 1;
    m_text = draft.text;
    m_hasAttachments = !draft.attachments.isEmpty();
}

bool PelinorDraftEdits::isEdited() const
{
    const bool isMore = m_text.size() > m_initialText.size() + fewEdits;
    return m_wasLeft || (isChanged() && (m_editCount > fewEdits || isMore || m_hasAttachments));
}

PelinorDraftRanges::PelinorDraftRanges(QStringView text)
    : linkRanges(linksOf(text))
    , hashTagRanges(KRAdditions::arrayOfRangesForRegex(text, KRHashTagRegex))
    , usernameRanges(KRAdditions::arrayOfRangesForRegex(text, KRTwitterUsernameRegex))
{
}

KRRangeList PelinorDraftRanges::linksOf(QStringView text)
{
    return KRAdditions::arrayOfRangesForRegex(text, KRLinkRegex);
}

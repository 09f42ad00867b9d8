#pragma once

#include "foundation/KRRange.h"

#include <QString>

#include <optional>

class KRKeyedArchiver;
class KRKeyedUnarchiver;
class TwitterStatus;
class TwitterUser;

/// The character that stands for an attached file in the text of a draft.
inline constexpr QChar PelinorAttachmentCharacter = QChar::ObjectReplacementCharacter;

/// A file in a draft: one character of its text.
struct PelinorAttachment {
    /// The index of its character.
    qsizetype location = 0;
    /// Its path.
    QString filename;
    bool operator==(const PelinorAttachment&) const = default;

    enum class Kind { None, Picture, Movie };
    /// What the file is as the system tells it; only pictures and movies can be attached.
    [[nodiscard]] static Kind kindOfFile(const QString& path);
};

/// What somebody is writing: the text with its attachments, and where it goes. A value.
class PelinorDraft {
public:
    /// What an attachment is expected to weigh beyond its own character: the room of its link.
    static constexpr qsizetype attachmentWeight = 30;

    QString text = {};
    /// In text order. A replacement character that is none of them is a character like any other.
    QList<PelinorAttachment> attachments = {};

    /// The name that tells the account from all others.
    QString accountName = {};
    // The post that is answered.
    QString inReplyToStatusID = {};
    QString inReplyToUsername = {};
    QString inReplyToFullName = {};
    // Who gets it, when it is a direct message.
    QString recipientID = {};
    QString recipientUsername = {};
    /// It is a direct message, also while nobody has been chosen.
    bool isDirectMessage = false;
    /// It was on its way to the service when it was last heard of.
    bool mayHaveGoneOut = false;
    bool operator==(const PelinorDraft&) const = default;

    void setInReplyTo(const TwitterStatus* status);
    void setRecipient(const TwitterUser* user);
    /// What an untouched window has written in it.
    [[nodiscard]] QString replyPrefix() const;

    [[nodiscard]] bool isEmpty() const { return text.isEmpty(); }
    [[nodiscard]] qsizetype lengthWithImages() const
    {
        return text.size() + attachmentWeight * attachments.size();
    }
    /// Puts the link in the place of the attachment nearest to the end, which is taken away.
    void replaceLastAttachment(const QString& link);

    void encodeWithCoder(KRKeyedArchiver& coder) const;
    /// Nothing when the archive is none of a draft.
    [[nodiscard]] static std::optional<PelinorDraft> draftWithCoder(const KRKeyedUnarchiver& coder);
};

/// What has become of the text that a window put in itself.
class PelinorDraftEdits {
public:
    /// So few edits make nothing that one would miss, ...
    static constexpr int fewEdits = 3;

    /// The window begins with this draft, which may be one that was left by an earlier run.
    void begin(const PelinorDraft& draft, bool wasLeft);
    /// The draft has changed, or not.
    void note(const PelinorDraft& draft);
    /// There is something to keep.
    [[nodiscard]] bool isChanged() const { return m_wasLeft || m_text != m_initialText; }
    /// There is something to ask about before it is dropped: ... unless they brought more than a key does.
    [[nodiscard]] bool isEdited() const;

private:
    QString m_initialText;
    QString m_text;
    bool m_hasAttachments = false;
    bool m_wasLeft = false;
    int m_editCount = 0;
};

/// How much room is left, as a field beside the text shows it.
struct PelinorDraftCount {
    /// The longest text is that of the account's site, 0 where there is no limit.
    PelinorDraftCount(const PelinorDraft& draft, qsizetype longest)
        : isLimited(longest > 0)
        , remaining(longest - draft.lengthWithImages())
    {
    }

    bool isLimited;
    /// Negative when there is too much. Meaningless without a limit.
    qsizetype remaining;
    [[nodiscard]] bool isOver() const { return isLimited && remaining < 0; }
};

/// What is coloured in a draft while it is written. Where they overlap, the later kind wins.
struct PelinorDraftRanges {
    explicit PelinorDraftRanges(QStringView text);
    /// The first of them alone.
    [[nodiscard]] static KRRangeList linksOf(QStringView text);

    KRRangeList linkRanges;
    KRRangeList hashTagRanges;
    /// Each includes the "@".
    KRRangeList usernameRanges;
};

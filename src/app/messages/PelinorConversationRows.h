#pragma once

#include "app/messages/PelinorOutbox.h"
#include "model/records/TwitterDirectMessage.h"

#include <QDate>

#include <vector>

/// A row of a conversation.
struct PelinorConversationRow {
    enum class Kind {
        /// Stands for the messages that are not loaded yet.
        Older,
        /// The heading of a day.
        Day,
        Message,
        /// One that has not arrived.
        Outgoing,
    };

    Kind kind = Kind::Message;
    /// Of the user's time zone; invalid for messages without a date.
    QDate day = {};
    /// Also for one that has not arrived, made of what was written.
    TwitterDirectMessagePtr message = nullptr;
    PelinorOutgoingMessage outgoing = {};
    bool isMine = false;
    /// What one person writes within a few minutes is a group: who it is stands at its beginning, when it was
    /// at its end.
    bool beginsGroup = true;
    bool endsGroup = true;

    /// The same row in another list.
    [[nodiscard]] QString identity() const;
};

/// A conversation from top to bottom, the oldest first, under a heading for each day. Pure.
class PelinorConversationRows {
public:
    /// Messages further apart stand alone.
    static constexpr std::chrono::minutes groupGap { 10 };

    [[nodiscard]] static std::vector<PelinorConversationRow> rows(const TwitterAccount& account,
        const TwitterDirectMessageList& newestFirst,
        const QList<PelinorOutgoingMessage>& outgoing,
        bool hasOlder);
    /// "Today", "Yesterday", the name of a day of the last week, else the date.
    [[nodiscard]] static QString titleOfDay(const QDate& day, const QDate& today);
};

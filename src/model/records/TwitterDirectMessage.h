#pragma once

#include "foundation/KRResult.h"
#include "model/records/TwitterUser.h"
#include "text/KRActiveTextRanges.h"

#include <QDateTime>
#include <QList>

#include <compare>
#include <memory>

class KRXMLParser;
class TwitterDirectMessage;

using TwitterDirectMessagePtr = std::shared_ptr<TwitterDirectMessage>;
using TwitterDirectMessageList = QList<TwitterDirectMessagePtr>;

/// One private message. A parser fills a new record on the background thread; once TwitterUniquingTables has
/// seen it, it belongs to the main thread. Owned by a std::shared_ptr.
class TwitterDirectMessage {
public:
    TwitterDirectMessage() = default;
    TwitterDirectMessage(const TwitterDirectMessage&) = delete;
    TwitterDirectMessage& operator=(const TwitterDirectMessage&) = delete;
    ~TwitterDirectMessage() = default;

    /// From a "direct_message" document. Whatever thread parses.
    static KRResult<TwitterDirectMessagePtr> messageWithXML(const QByteArray& data);
    /// The "direct_message" elements of a document, in its order.
    static KRResult<TwitterDirectMessageList> messagesWithXML(const QByteArray& data);

    /// Decimal text, as the service sent it.
    const QString& messageID() const { return m_messageID; }
    void setMessageID(const QString& messageID) { m_messageID = messageID; }
    /// Without XML entities; never null.
    const QString& text() const { return m_text; }
    void setText(const QString& text);
    /// The active spans of the text.
    const KRActiveTextRanges& activeTextRanges() const { return m_activeTextRanges; }
    const QDateTime& date() const { return m_date; }
    void setDate(const QDateTime& date) { m_date = date; }
    const TwitterUserPtr& sender() const { return m_sender; }
    void setSender(TwitterUserPtr user) { m_sender = std::move(user); }
    const TwitterUserPtr& recipient() const { return m_recipient; }
    void setRecipient(TwitterUserPtr user) { m_recipient = std::move(user); }
    /// A desktop notification has announced it.
    bool didGlobalNotification() const { return m_didGlobalNotification; }
    void setDidGlobalNotification(bool did) { m_didGlobalNotification = did; }

    /// The same object or ID.
    bool isEqual(const TwitterDirectMessage& other) const;
    size_t hashValue() const;
    /// By date, the newest first; of one date the higher ID first. Without a date last.
    std::weak_ordering compare(const TwitterDirectMessage& other) const;

    /// For logs.
    QString description() const;

    /// Fills this record from the content of a "direct_message" element.
    void parseMessageXML(KRXMLParser& parser);
    static void parseMessagesXML(KRXMLParser& parser, TwitterDirectMessageList& messages);

private:
    QString m_messageID;
    QString m_text = QLatin1String("");
    QDateTime m_date;
    TwitterUserPtr m_sender;
    TwitterUserPtr m_recipient;
    KRActiveTextRanges m_activeTextRanges;
    bool m_didGlobalNotification = false;
};

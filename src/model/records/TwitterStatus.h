#pragma once

#include "foundation/KRResult.h"
#include "model/records/TwitterUser.h"
#include "text/KRActiveTextRanges.h"

#include <QDateTime>
#include <QList>
#include <QUrl>

#include <compare>
#include <memory>

class KRKeyedArchiver;
class KRKeyedUnarchiver;
class KRXMLParser;
class TwitterStatus;

using TwitterStatusPtr = std::shared_ptr<TwitterStatus>;
using TwitterStatusList = QList<TwitterStatusPtr>;

/// What is shown of a status has changed. Posted on the main thread.
struct TwitterStatusDidUpdateNotification {
    static constexpr char name[] = "TwitterStatusDidUpdateNotification";
    const TwitterStatus* object;
};

/// One post. A parser fills a new record on the background thread; once TwitterUniquingTables has seen it, it
/// belongs to the main thread. Owned by a std::shared_ptr.
class TwitterStatus {
public:
    TwitterStatus() = default;
    TwitterStatus(const TwitterStatus&) = delete;
    TwitterStatus& operator=(const TwitterStatus&) = delete;
    virtual ~TwitterStatus() = default;

    /// From a "status" document. Whatever thread parses.
    static KRResult<TwitterStatusPtr> statusWithXML(const QByteArray& data);
    /// The "status" elements of a document, in its order.
    static KRResult<TwitterStatusList> statusesWithXML(const QByteArray& data);
    /// The results of a search, in the order of the answer: an object with "results", or an array of full
    /// statuses. One without an author, or without an ID, is a result all the same, but for the last one of
    /// an answer that is cut short.
    static KRResult<TwitterStatusList> statusesWithSearchJSON(const QByteArray& data);

    /// Archives the ID, which is all that outlives a run.
    void encodeWithCoder(KRKeyedArchiver& coder) const;
    /// A status with an ID and nothing else.
    static TwitterStatusPtr statusWithCoder(const KRKeyedUnarchiver& coder);

    /// Decimal text, as the service sent it.
    const QString& statusID() const { return m_statusID; }
    void setStatusID(const QString& statusID) { m_statusID = statusID; }
    /// Without XML entities; never null.
    const QString& text() const { return m_text; }
    void setText(const QString& text);
    /// The active spans of the text.
    const KRActiveTextRanges& activeTextRanges() const { return m_activeTextRanges; }
    const QDateTime& date() const { return m_date; }
    void setDate(const QDateTime& date) { m_date = date; }
    /// The date as the service wrote it; null for search results that are partial.
    const QString& originalDateString() const { return m_originalDateString; }
    void setOriginalDateString(const QString& string) { m_originalDateString = string; }
    /// Null when the service did not say; so it is with some search results.
    const TwitterUserPtr& fromUser() const { return m_fromUser; }
    void setFromUser(TwitterUserPtr user) { m_fromUser = std::move(user); }
    /// Null for a status that answers none.
    const QString& inReplyToStatusID() const { return m_inReplyToStatusID; }
    void setInReplyToStatusID(const QString& statusID) { m_inReplyToStatusID = statusID; }
    /// Made from a search result, which lacks the full record's data.
    bool isPartialStatus() const { return m_isPartialStatus; }
    void setIsPartialStatus(bool isPartial) { m_isPartialStatus = isPartial; }
    /// The user has read it.
    bool isRead() const { return m_isRead; }
    void setIsRead(bool isRead) { m_isRead = isRead; }
    /// It has been on the screen.
    bool wasSeen() const { return m_wasSeen; }
    void setWasSeen(bool wasSeen) { m_wasSeen = wasSeen; }
    /// A desktop notification has announced it.
    bool didGlobalNotification() const { return m_didGlobalNotification; }
    void setDidGlobalNotification(bool did) { m_didGlobalNotification = did; }

    /// False for the rows of a list that stand for no post.
    virtual bool isNotADummyStatus() const { return true; }
    /// The status's page below the root of the service's pages, as TwitterServiceHosts::webRoot() gives it;
    /// empty without a root, an ID or an author's name.
    QUrl twitterURL(const QString& webRoot) const;

    /// The same object or ID.
    bool isEqual(const TwitterStatus& other) const;
    size_t hashValue() const;
    /// By date, the newest first; of one date the higher ID first. Without a date last.
    std::weak_ordering compare(const TwitterStatus& other) const;

    /// For logs.
    QString description() const;

    /// Fills this record from the content of a "status" element.
    void parseStatusXML(KRXMLParser& parser);
    static void parseStatusesXML(KRXMLParser& parser, TwitterStatusList& statuses);

private:
    QString m_statusID;
    QString m_text = QLatin1String("");
    KRActiveTextRanges m_activeTextRanges;
    QDateTime m_date;
    QString m_originalDateString;
    TwitterUserPtr m_fromUser;
    QString m_inReplyToStatusID;
    bool m_isPartialStatus = false;
    bool m_isRead = false;
    bool m_wasSeen = false;
    bool m_didGlobalNotification = false;
};

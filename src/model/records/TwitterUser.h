#pragma once

#include "foundation/KRResult.h"
#include "model/records/TwitterProfileImage.h"

#include <QDateTime>
#include <QList>
#include <QUrl>

#include <compare>
#include <memory>
#include <optional>

class KRJSONParser;
class KRXMLParser;
class TwitterUser;

using TwitterUserPtr = std::shared_ptr<TwitterUser>;
using TwitterUserList = QList<TwitterUserPtr>;

/// A person's data or avatar has changed. Posted on the main thread.
struct TwitterUserDidUpdateNotification {
    static constexpr char name[] = "TwitterUserDidUpdateNotification";
    const TwitterUser* object;
};

/// One person. A field the service did not send is null, empty or nothing.
///
/// A parser fills a new record on the background thread; once TwitterUniquingTables has seen it, it belongs
/// to the main thread. Always owned by a std::shared_ptr.
class TwitterUser : public std::enable_shared_from_this<TwitterUser> {
public:
    /// Dated now, or as the answer that is being read.
    TwitterUser();
    TwitterUser(const TwitterUser&) = delete;
    TwitterUser& operator=(const TwitterUser&) = delete;
    ~TwitterUser() = default;

    /// From a "user" document. Whatever thread parses.
    static KRResult<TwitterUserPtr> userWithXML(const QByteArray& data);
    /// The "user" elements of a document.
    static KRResult<TwitterUserList> usersWithXML(const QByteArray& data);

    /// When this record's data was made.
    const QDateTime& lastUpdated() const { return m_lastUpdated; }
    void setLastUpdated(const QDateTime& date) { m_lastUpdated = date; }
    /// Decimal text; null for a person known from search results only.
    const QString& userID() const { return m_userID; }
    void setUserID(const QString& userID) { m_userID = userID; }
    const QString& username() const { return m_username; }
    void setUsername(const QString& username) { m_username = username; }
    QString lowercaseUsername() const;
    /// The user name when there is no full one.
    const QString& fullName() const { return m_fullName.isNull() ? m_username : m_fullName; }
    void setFullName(const QString& fullName) { m_fullName = fullName; }
    const QString& location() const { return m_location; }
    void setLocation(const QString& location) { m_location = location; }
    const QString& bio() const { return m_bio; }
    void setBio(const QString& bio) { m_bio = bio; }
    /// The home page.
    const QUrl& url() const { return m_url; }
    void setUrl(const QUrl& url) { m_url = url; }
    const QUrl& profileImageURL() const { return m_profileImageURL; }
    void setProfileImageURL(const QUrl& url) { m_profileImageURL = url; }
    /// The avatar in full size, by the service's way of naming the files.
    QUrl largeProfileImageURL() const;
    std::optional<bool> isProtected() const { return m_isProtected; }
    void setIsProtected(std::optional<bool> isProtected) { m_isProtected = isProtected; }
    std::optional<qint32> numberOfFollowers() const { return m_numberOfFollowers; }
    void setNumberOfFollowers(std::optional<qint32> number) { m_numberOfFollowers = number; }
    std::optional<qint32> numberOfFollowing() const { return m_numberOfFollowing; }
    void setNumberOfFollowing(std::optional<qint32> number) { m_numberOfFollowing = number; }
    std::optional<qint32> numberOfStatuses() const { return m_numberOfStatuses; }
    void setNumberOfStatuses(std::optional<qint32> number) { m_numberOfStatuses = number; }
    std::optional<qint32> numberOfFavorites() const { return m_numberOfFavorites; }
    void setNumberOfFavorites(std::optional<qint32> number) { m_numberOfFavorites = number; }
    /// Made from a search result: only names and avatar address are known.
    bool isPartialUser() const { return m_isPartialUser; }
    void setIsPartialUser(bool isPartial) { m_isPartialUser = isPartial; }

    /// The same object, ID or (exactly) user name.
    bool isEqual(const TwitterUser& other) const;
    /// By lower-case user name, ascending.
    std::weak_ordering compare(const TwitterUser& other) const;

    /// Takes over the data of a record of the same person if that is newer and not less complete; then posts
    /// TwitterUserDidUpdateNotification. Main thread.
    void assimilateUser(const TwitterUser& other);

    /// The rounded avatar; null until it is loaded. The first call starts the load, and
    /// TwitterUserDidUpdateNotification tells when it is there. A load that failed is not tried again during
    /// the run. Main thread.
    TwitterProfileImagePtr profileImage();
    bool isLoadingProfileImage() const { return m_isLoadingProfileImage; }
    /// How avatars are decoded; without a maker none is ever there. Any thread.
    static void setProfileImageMaker(TwitterProfileImageMaker maker);

    /// For logs.
    QString description() const;

    /// Fills this record from the content of a "user" element.
    void parseUserXML(KRXMLParser& parser);
    static void parseUsersXML(KRXMLParser& parser, TwitterUserList& users);
    /// Fills this record from the members of a user of a search result. What is null or of another type than
    /// it should be leaves its field as it was.
    void parseUserJSON(KRJSONParser& parser);
    /// The address that a service gave as text: characters that cannot stand in one are percent-escaped.
    /// Empty, and a line in the log, when it is none.
    static QUrl urlWithText(const QString& text);

private:
    struct Fields;

    void _assimilateUser(const TwitterUser& other);
    void _requestProfileImage();
    void _profileImageResponse(KRResult<QByteArray> response);
    void _didLoadProfileImage(TwitterProfileImagePtr image);

    QDateTime m_lastUpdated;
    QString m_userID;
    QString m_username;
    QUrl m_profileImageURL;
    QString m_fullName;
    QString m_location;
    QString m_bio;
    QUrl m_url;
    std::optional<bool> m_isProtected;
    std::optional<qint32> m_numberOfFollowers;
    std::optional<qint32> m_numberOfStatuses;
    std::optional<qint32> m_numberOfFollowing;
    std::optional<qint32> m_numberOfFavorites;
    TwitterProfileImagePtr m_profileImage;
    bool m_isPartialUser = false;
    bool m_isLoadingProfileImage = false;
};

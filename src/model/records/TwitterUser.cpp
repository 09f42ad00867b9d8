#include "model/records/TwitterUser.h"

#include "foundation/KRClock.h"
#include "foundation/KRLog.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterRecordReading.h"
#include "text/KRDateAdditions.h"
#include "text/TwitterAdditions.h"
#include "transport/KRBackgroundThread.h"
#include "transport/KRNetworkCache.h"
#include "transport/KRProxy.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

std::atomic<TwitterProfileImageMaker> s_profileImageMaker = nullptr;

// Known and of no use here; unlike an unknown one, what such an element holds is looked at.
constexpr std::array<std::string_view, 10> ignoredElements { "protected",
    "profile_background_color",
    "profile_text_color",
    "profile_link_color",
    "profile_sidebar_fill_color",
    "profile_sidebar_border_color",
    "created_at",
    "utc_offset",
    "time_zone",
    "profile_background_image_url" };

// Leading digits, as far as 32 bits go.
qint32 intValue(QStringView text)
{
    const bool isNegative = text.startsWith(u'-');
    qint64 value = 0;
    for (const QChar character : text.sliced(isNegative || text.startsWith(u'+') ? 1 : 0)) {
        if (character < u'0' || character > u'9')
            break;
        value = std::min<qint64>(value * 10 + (character.unicode() - u'0'), Q_INT64_C(1) << 31);
    }
    return static_cast<qint32>(std::clamp<qint64>(isNegative ? -value : value,
        std::numeric_limits<qint32>::min(),
        std::numeric_limits<qint32>::max()));
}

bool areSame(const QString& a, const QString& b)
{
    return !a.isNull() && a == b;
}

} // namespace

TwitterUser::TwitterUser()
    : m_lastUpdated(KRNow())
{
}

KRResult<TwitterUserPtr> TwitterUser::userWithXML(const QByteArray& data)
{
    return TwitterRecordReading::recordWithXML(data, &TwitterUser::parseUserXML);
}

KRResult<TwitterUserList> TwitterUser::usersWithXML(const QByteArray& data)
{
    return TwitterRecordReading::recordsWithXML(data, &TwitterUser::parseUsersXML);
}

void TwitterUser::parseUsersXML(KRXMLParser& parser, TwitterUserList& users)
{
    TwitterRecordReading::readRecord(parser, "user", &TwitterUser::parseUserXML, users);
}

void TwitterUser::parseUserXML(KRXMLParser& parser)
{
    const std::string_view element = parser.elementName();
    const auto take = [&parser](QString& field) {
        if (parser.hasCharacters())
            field = parser.characters();
    };
    const auto takeURL = [&parser](QUrl& field) {
        if (parser.hasCharacters())
            field = urlWithText(parser.characters());
    };
    const auto takeNumber = [&parser](std::optional<qint32>& field) {
        if (parser.hasCharacters())
            field = intValue(parser.characters());
    };

    if (element == "id")
        take(m_userID);
    else if (element == "name")
        take(m_fullName);
    else if (element == "screen_name")
        take(m_username);
    else if (element == "location")
        take(m_location);
    else if (element == "description")
        take(m_bio);
    else if (element == "profile_image_url")
        takeURL(m_profileImageURL);
    else if (element == "url")
        takeURL(m_url);
    else if (element == "followers_count")
        takeNumber(m_numberOfFollowers);
    else if (element == "friends_count")
        takeNumber(m_numberOfFollowing);
    else if (element == "favourites_count")
        takeNumber(m_numberOfFavorites);
    else if (element == "statuses_count")
        takeNumber(m_numberOfStatuses);
    else if (element != "user"
        && std::find(ignoredElements.begin(), ignoredElements.end(), element) == ignoredElements.end())
        TwitterRecordReading::skipElement(parser);
}

void TwitterUser::parseUserJSON(KRJSONParser& parser)
{
    if (TwitterRecordReading::skipContainer(parser))
        return;
    const std::string_view key = parser.key().value_or(std::string_view());
    const auto take = [&parser](QString& field) {
        if (const QString text = parser.stringValue(); !text.isEmpty())
            field = text;
    };
    const auto takeURL = [&parser](QUrl& field) {
        if (const QString text = parser.stringValue(); !text.isEmpty())
            field = urlWithText(text);
    };
    const auto takeNumber = [&parser](std::optional<qint32>& field) {
        if (const QString text = parser.stringValue(); !text.isEmpty())
            field = intValue(text);
    };

    if (key == "id")
        take(m_userID);
    else if (key == "name")
        take(m_fullName);
    else if (key == "screen_name")
        take(m_username);
    else if (key == "location")
        take(m_location);
    else if (key == "description")
        take(m_bio);
    else if (key == "profile_image_url")
        takeURL(m_profileImageURL);
    else if (key == "url")
        takeURL(m_url);
    else if (key == "followers_count")
        takeNumber(m_numberOfFollowers);
    else if (key == "friends_count")
        takeNumber(m_numberOfFollowing);
    else if (key == "favourites_count")
        takeNumber(m_numberOfFavorites);
    else if (key == "statuses_count")
        takeNumber(m_numberOfStatuses);
}

QUrl TwitterUser::urlWithText(const QString& text)
{
    // Escapes that are there stay.
    QUrl url(text, QUrl::TolerantMode);
    if (url.isValid())
        return url;
    KRLog(u"problem %1"_s.arg(text));
    return {};
}

QString TwitterUser::lowercaseUsername() const
{
    return m_username.toLower();
}

QUrl TwitterUser::largeProfileImageURL() const
{
    if (m_profileImageURL.isEmpty())
        return {};
    return QUrl::fromEncoded(m_profileImageURL.toEncoded().replace("_normal.", "."));
}

bool TwitterUser::isEqual(const TwitterUser& other) const
{
    return this == &other || areSame(m_userID, other.m_userID) || areSame(m_username, other.m_username);
}

std::weak_ordering TwitterUser::compare(const TwitterUser& other) const
{
    return lowercaseUsername().compare(other.lowercaseUsername()) <=> 0;
}

void TwitterUser::assimilateUser(const TwitterUser& other)
{
    using namespace TwitterAdditions;
    if (this == &other)
        return;
    if (!areSame(m_userID, other.m_userID)
        && !areSame(canonicalTwitterUsername(m_username), canonicalTwitterUsername(other.m_username))) {
        KRLog(
            u"Warning: trying to assimilate users with different IDs or usernames, this should never happen\n"
            "%1\n%2\n"_s.arg(description(), other.description()));
        return;
    }
    if (!KRAdditions::isBefore(m_lastUpdated, other.m_lastUpdated))
        return;
    if (!m_isPartialUser && other.m_isPartialUser)
        return;
    _assimilateUser(other);
}

void TwitterUser::_assimilateUser(const TwitterUser& other)
{
    m_userID = other.m_userID;
    m_lastUpdated = other.m_lastUpdated;
    m_username = other.m_username;
    m_profileImageURL = other.m_profileImageURL;
    m_fullName = other.fullName();
    m_location = other.m_location;
    m_bio = other.m_bio;
    m_url = other.m_url;
    m_isProtected = other.m_isProtected;
    m_numberOfFollowers = other.m_numberOfFollowers;
    m_numberOfStatuses = other.m_numberOfStatuses;
    m_numberOfFollowing = other.m_numberOfFollowing;
    m_numberOfFavorites = other.m_numberOfFavorites;
    m_isPartialUser = other.m_isPartialUser;
    if (!m_profileImage)
        m_profileImage = other.m_profileImage;
    KRNotificationCenter::defaultCenter().post(TwitterUserDidUpdateNotification { this });
}

void TwitterUser::setProfileImageMaker(TwitterProfileImageMaker maker)
{
    s_profileImageMaker = maker;
}

TwitterProfileImagePtr TwitterUser::profileImage()
{
    // The flag is never cleared: an avatar that could not be loaded is not asked for at every repaint.
    if (!m_profileImage && !m_isLoadingProfileImage) {
        m_isLoadingProfileImage = true;
        if (m_profileImageURL.isEmpty())
            KRLog(u"%1 has no profile image?"_s.arg(description()));
        else
            _requestProfileImage();
    }
    return m_profileImage;
}

void TwitterUser::_requestProfileImage()
{
    // The cache answers on the thread that asks: asked there, it has the picture decoded there.
    performOnSharedBackgroundThread([user = shared_from_this(), url = m_profileImageURL] {
        KRNetworkCache::request(url, Callback(user, &TwitterUser::_profileImageResponse));
    });
}

void TwitterUser::_profileImageResponse(KRResult<QByteArray> response)
{
    const TwitterProfileImageMaker maker = s_profileImageMaker;
    if (response.isError() || !maker)
        return;
    if (const TwitterProfileImagePtr image = maker(response.value()))
        mainThreadProxy(shared_from_this()).perform(&TwitterUser::_didLoadProfileImage, image);
}

void TwitterUser::_didLoadProfileImage(TwitterProfileImagePtr image)
{
    if (m_profileImage)
        return;
    m_profileImage = std::move(image);
    KRNotificationCenter::defaultCenter().post(TwitterUserDidUpdateNotification { this });
}

QString TwitterUser::description() const
{
    return QString::asprintf("[TwitterUser:%p id:", static_cast<const void*>(this))
        + u"%1 username:%2]"_s.arg(m_userID, m_username);
}

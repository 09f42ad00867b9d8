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

#include <QCache>

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <variant>

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
qint32 intValue(std::string_view text)
{
    const bool isNegative = text.substr(0, 1) == "-";
    if (isNegative || text.substr(0, 1) == "+")
        text.remove_prefix(1);
    qint64 value = 0;
    for (const char character : text) {
        if (character < '0' || character > '9')
            break;
        value = std::min<qint64>(value * 10 + (character - '0'), Q_INT64_C(1) << 31);
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
    : m_lastUpdated(TwitterReadingTime::now())
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

// Under these names a person's fields stand in every form of answer.
struct TwitterUser::Fields {
    using Field
        = std::variant<QString TwitterUser::*, QUrl TwitterUser::*, std::optional<qint32> TwitterUser::*>;
    struct Row {
        std::string_view name;
        Field field;
    };
    static constexpr std::array<Row, 11> rows { { { "id", &TwitterUser::m_userID },
        { "name", &TwitterUser::m_fullName },
        { "screen_name", &TwitterUser::m_username },
        { "location", &TwitterUser::m_location },
        { "description", &TwitterUser::m_bio },
        { "profile_image_url", &TwitterUser::m_profileImageURL },
        { "url", &TwitterUser::m_url },
        { "followers_count", &TwitterUser::m_numberOfFollowers },
        { "friends_count", &TwitterUser::m_numberOfFollowing },
        { "favourites_count", &TwitterUser::m_numberOfFavorites },
        { "statuses_count", &TwitterUser::m_numberOfStatuses } } };

    // Nothing when no field has the name.
    static const Field* named(std::string_view name)
    {
        for (const Row& row : rows) {
            if (row.name == name)
                return &row.field;
        }
        return nullptr;
    }

    // What the parser is at; when that says nothing, the field stays as it was. A number needs no text made
    // of it, and most people of a page were on it before.
    template <class Parser>
    static void take(TwitterUser& user, const Field& field, const Parser& parser)
    {
        const std::string_view bytes = parser.bytes();
        if (bytes.empty())
            return;
        if (const auto* number = std::get_if<std::optional<qint32> TwitterUser::*>(&field)) {
            user.** number = intValue(bytes);
            return;
        }
        const QString text = textOf(parser);
        if (text.isEmpty())
            return;
        if (const auto* url = std::get_if<QUrl TwitterUser::*>(&field))
            user.** url = urlWithText(text);
        else
            user.*std::get<QString TwitterUser::*>(field) = text;
    }

    static QString textOf(const KRXMLParser& parser) { return parser.characters(); }
    static QString textOf(const KRJSONParser& parser) { return parser.stringValue(); }
};

void TwitterUser::parseUserXML(KRXMLParser& parser)
{
    const std::string_view element = parser.elementName();
    if (const Fields::Field* field = Fields::named(element)) {
        if (parser.hasCharacters())
            Fields::take(*this, *field, parser);
    } else if (element != "user"
        && std::find(ignoredElements.begin(), ignoredElements.end(), element) == ignoredElements.end()) {
        TwitterRecordReading::skipElement(parser);
    }
}

void TwitterUser::parseUserJSON(KRJSONParser& parser)
{
    if (TwitterRecordReading::skipContainer(parser))
        return;
    if (const Fields::Field* field = Fields::named(parser.key().value_or(std::string_view())))
        Fields::take(*this, *field, parser);
}

QUrl TwitterUser::urlWithText(const QString& text)
{
    // The same few people turn up all over a page, and reading an address costs more than the rest of one.
    constexpr qsizetype mostRemembered = 256;
    thread_local QCache<QString, QUrl> remembered(mostRemembered);
    if (const QUrl* known = remembered.object(text))
        return *known;
    // Escapes that are there stay.
    QUrl url(text, QUrl::TolerantMode);
    if (url.isValid()) {
        remembered.insert(text, new QUrl(url));
        return url;
    }
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
    // Data of a later time than now was made before the clock was put right, and is older than all since.
    if (!KRAdditions::isBefore(m_lastUpdated, other.m_lastUpdated)
        && !KRAdditions::isAfter(m_lastUpdated, KRNow()))
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

#include "model/records/TwitterStatus.h"

#include "foundation/KRKeyedArchiver.h"
#include "model/records/TwitterRecordOrder.h"
#include "model/records/TwitterRecordReading.h"
#include "text/KRDateAdditions.h"
#include "text/KRStringAdditions.h"

#include <QHash>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String statusIDKey("statusID");

// Known and of no use here; unlike an unknown one, what such an element holds is looked at.
constexpr std::array<std::string_view, 6> ignoredElements { "status",
    "source",
    "truncated",
    "in_reply_to_user_id",
    "favorited",
    "in_reply_to_screen_name" };

} // namespace

KRResult<TwitterStatusPtr> TwitterStatus::statusWithXML(const QByteArray& data)
{
    return TwitterRecordReading::recordWithXML(data, &TwitterStatus::parseStatusXML);
}

KRResult<TwitterStatusList> TwitterStatus::statusesWithXML(const QByteArray& data)
{
    return TwitterRecordReading::recordsWithXML(data, &TwitterStatus::parseStatusesXML);
}

void TwitterStatus::parseStatusesXML(KRXMLParser& parser, TwitterStatusList& statuses)
{
    TwitterRecordReading::readRecord(parser, "status", &TwitterStatus::parseStatusXML, statuses);
}

void TwitterStatus::parseStatusXML(KRXMLParser& parser)
{
    const std::string_view element = parser.elementName();
    if (element == "user") {
        m_fromUser = std::make_shared<TwitterUser>();
        parser.pushCallback(Callback(m_fromUser, &TwitterUser::parseUserXML), KRXMLParser::RepeatElement::No);
    } else if (element == "id") {
        if (parser.hasCharacters())
            m_statusID = parser.characters();
    } else if (element == "text") {
        if (parser.hasCharacters())
            setText(KRAdditions::stringByUnescapingXMLEntities(parser.characters()));
    } else if (element == "created_at") {
        if (parser.hasCharacters()) {
            m_originalDateString = parser.characters();
            m_date = KRAdditions::dateValueFromHTTPLikeDate(m_originalDateString);
        }
    } else if (element == "in_reply_to_status_id") {
        if (parser.hasCharacters())
            m_inReplyToStatusID = parser.characters();
    } else if (std::find(ignoredElements.begin(), ignoredElements.end(), element) == ignoredElements.end()) {
        TwitterRecordReading::skipElement(parser);
    }
}

void TwitterStatus::encodeWithCoder(KRKeyedArchiver& coder) const
{
    coder.encodeString(statusIDKey, m_statusID);
}

TwitterStatusPtr TwitterStatus::statusWithCoder(const KRKeyedUnarchiver& coder)
{
    auto status = std::make_shared<TwitterStatus>();
    status->m_statusID = coder.decodeString(statusIDKey);
    return status;
}

void TwitterStatus::setText(const QString& text)
{
    m_text = text.isNull() ? u""_s : text;
    m_activeTextRanges = KRActiveTextRanges(m_text);
}

QUrl TwitterStatus::twitterURL(const QString& webRoot) const
{
    if (webRoot.isEmpty() || !m_fromUser || m_fromUser->username().isEmpty() || m_statusID.isEmpty())
        return {};
    const auto encoded
        = [](const QString& text) { return QString::fromLatin1(QUrl::toPercentEncoding(text)); };
    return QUrl(webRoot + encoded(m_fromUser->username()) + "/status/"_L1 + encoded(m_statusID),
        QUrl::StrictMode);
}

bool TwitterStatus::isEqual(const TwitterStatus& other) const
{
    return this == &other || (!m_statusID.isNull() && m_statusID == other.m_statusID);
}

size_t TwitterStatus::hashValue() const
{
    return m_statusID.isNull() ? qHash(this) : qHash(m_statusID);
}

std::weak_ordering TwitterStatus::compare(const TwitterStatus& other) const
{
    return compareNewestFirst(m_date, m_statusID, other.m_date, other.m_statusID);
}

QString TwitterStatus::description() const
{
    return QString::asprintf("[TwitterStatus:%p id:", static_cast<const void*>(this))
        + u"%1 text:%2 date:%3 originalDateString:%4]"_s.arg(m_statusID,
            m_text,
            m_date.toString(Qt::ISODate),
            m_originalDateString);
}

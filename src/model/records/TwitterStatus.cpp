#include "model/records/TwitterStatus.h"

#include "foundation/KRKeyedArchiver.h"
#include "model/records/TwitterRecordReading.h"
#include "text/KRArrayAdditions.h"
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

// Without an ID a status cannot be made definitive, without an author it cannot be shown.
bool isComplete(const TwitterStatusPtr& status)
{
    return !status->statusID().isNull() && status->fromUser() && !status->fromUser()->username().isNull();
}

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

KRResult<TwitterStatusList> TwitterStatus::statusesWithSearchJSON(const QByteArray& data)
{
    using Type = KRJSONParser::Type;
    TwitterStatusList statuses;
    const auto resultsHandler = KRJSONParser::Handler::withFunction(
        [&statuses](KRJSONParser& parser) { parseSearchStatusesJSON(parser, statuses); });
    bool isFirstEvent = true;
    const auto handler = KRJSONParser::Handler::withFunction([&](KRJSONParser& parser) {
        // Some sites send the array of results with nothing around it.
        const bool isDocument = std::exchange(isFirstEvent, false);
        if (parser.type() == Type::ArrayStart && (isDocument || parser.hasKey("results")))
            parser.pushCallback(resultsHandler, KRJSONParser::RepeatElement::No);
    });
    const KRResult<void> parsed = KRJSONParser::parseData(data, handler);
    if (parsed.isError())
        return parsed.error();
    return KRAdditions::filter(statuses, isComplete);
}

void TwitterStatus::parseSearchStatusesJSON(KRJSONParser& parser, TwitterStatusList& statuses)
{
    if (parser.type() != KRJSONParser::Type::ObjectStart)
        return;
    statuses.append(std::make_shared<TwitterStatus>());
    statuses.last()->m_isPartialStatus = true;
    parser.pushCallback(Callback(statuses.last(), &TwitterStatus::parseStatusSearchJSON),
        KRJSONParser::RepeatElement::No);
}

void TwitterStatus::parseStatusSearchJSON(KRJSONParser& parser)
{
    if (parser.type() == KRJSONParser::Type::ObjectStart && parser.hasKey("user")) {
        // The full form: nothing is missing that the XML interface would send.
        m_isPartialStatus = false;
        m_fromUser = std::make_shared<TwitterUser>();
        parser.pushCallback(Callback(m_fromUser, &TwitterUser::parseUserJSON),
            KRJSONParser::RepeatElement::No);
        return;
    }
    if (TwitterRecordReading::skipContainer(parser) || parser.type() != KRJSONParser::Type::String)
        return;
    const std::string_view key = parser.key().value_or(std::string_view());
    if (key == "id") {
        if (const QString text = parser.stringValue(); !text.isEmpty())
            m_statusID = text;
    } else if (key == "text") {
        if (const QString text = parser.stringValue(); !text.isNull())
            setText(KRAdditions::stringByUnescapingXMLEntities(text));
    } else if (key == "created_at") {
        _takeSearchDate(parser.stringValue());
    } else if (key == "in_reply_to_status_id") {
        if (const QString text = parser.stringValue(); !text.isEmpty())
            m_inReplyToStatusID = text;
    } else if (m_isPartialStatus && key == "from_user") {
        if (const QString text = parser.stringValue(); !text.isEmpty()) {
            _partialFromUser()->setUsername(text);
            _partialFromUser()->setFullName(text);
        }
    } else if (m_isPartialStatus && key == "profile_image_url") {
        if (const QString text = parser.stringValue(); !text.isEmpty())
            _partialFromUser()->setProfileImageURL(TwitterUser::urlWithText(text));
    }
}

const TwitterUserPtr& TwitterStatus::_partialFromUser()
{
    if (!m_fromUser) {
        m_fromUser = std::make_shared<TwitterUser>();
        m_fromUser->setIsPartialUser(true);
    }
    return m_fromUser;
}

void TwitterStatus::_takeSearchDate(const QString& text)
{
    if (const QDateTime date = KRAdditions::dateValueFromJSONTwitterDate(text); date.isValid()) {
        m_date = date;
    } else if (const QDateTime fullDate = KRAdditions::dateValueFromHTTPLikeDate(text); fullDate.isValid()) {
        m_date = fullDate;
        m_originalDateString = text;
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

QUrl TwitterStatus::twitterURL(const QString& webHost) const
{
    if (webHost.isEmpty() || !m_fromUser)
        return {};
    return QUrl(u"https://%1/%2/status/%3"_s.arg(webHost, m_fromUser->username(), m_statusID));
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
    return KRAdditions::compareDates(other.m_date, m_date);
}

QString TwitterStatus::description() const
{
    return QString::asprintf("[TwitterStatus:%p id:", static_cast<const void*>(this))
        + u"%1 text:%2 date:%3 originalDateString:%4]"_s.arg(m_statusID,
            m_text,
            m_date.toString(Qt::ISODate),
            m_originalDateString);
}

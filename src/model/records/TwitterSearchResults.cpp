#include "model/records/TwitterRecordReading.h"
#include "model/records/TwitterStatus.h"
#include "text/KRDateAdditions.h"
#include "text/KRStringAdditions.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace {

using Type = KRJSONParser::Type;
using RepeatElement = KRJSONParser::RepeatElement;

// Reads one answer. Its handlers serve every result in turn, as does what is remembered between them: in a
// page of results the same people turn up again and again.
class SearchReader {
public:
    KRResult<TwitterStatusList> read(const QByteArray& data)
    {
        const KRResult<void> parsed = KRJSONParser::parseData(data, _handler(&SearchReader::parseSearchJSON));
        if (parsed.isError())
            return parsed.error();
        for (const TwitterStatusPtr& status : std::as_const(m_statuses))
            _dropNobody(*status);
        // The rest of a result may be what is missing of an answer that was cut.
        if (!m_statuses.isEmpty() && !_endsAsItBegins(data) && !_isComplete(*m_statuses.last()))
            m_statuses.removeLast();
        return std::move(m_statuses);
    }

private:
    static bool _endsAsItBegins(const QByteArray& data)
    {
        const QByteArrayView text = QByteArrayView(data).trimmed();
        return (text.startsWith('{') && text.endsWith('}')) || (text.startsWith('[') && text.endsWith(']'));
    }

    static bool _isComplete(const TwitterStatus& status)
    {
        return !status.statusID().isNull() && status.fromUser() && !status.fromUser()->username().isNull();
    }

    // Of a picture alone nobody is known by.
    static void _dropNobody(TwitterStatus& status)
    {
        const TwitterUserPtr& user = status.fromUser();
        if (user && user->username().isNull() && user->userID().isNull())
            status.setFromUser(nullptr);
    }

    KRJSONParser::Handler _handler(void (SearchReader::*method)(KRJSONParser&))
    {
        return KRJSONParser::Handler::withFunction(
            [this, method](KRJSONParser& parser) { (this->*method)(parser); });
    }

    void parseSearchJSON(KRJSONParser& parser)
    {
        // Some sites send the array of results with nothing around it.
        const bool isDocument = std::exchange(m_isFirstEvent, false);
        if (parser.type() == Type::ArrayStart && (isDocument || parser.hasKey("results")))
            parser.pushCallback(m_resultsHandler, RepeatElement::No);
    }

    void parseSearchStatusesJSON(KRJSONParser& parser)
    {
        if (parser.type() != Type::ObjectStart)
            return;
        m_statuses.append(std::make_shared<TwitterStatus>());
        m_status = m_statuses.constLast().get();
        m_status->setIsPartialStatus(true);
        parser.pushCallback(m_statusHandler, RepeatElement::No);
    }

    // What is null or of another type than it should be leaves its field as it was.
    void parseStatusSearchJSON(KRJSONParser& parser)
    {
        if (parser.type() == Type::String) {
            _takeMember(parser);
        } else if (parser.type() == Type::ObjectStart && parser.hasKey("user")) {
            // The full form: nothing is missing that the XML interface would send.
            m_status->setIsPartialStatus(false);
            m_status->setFromUser(std::make_shared<TwitterUser>());
            parser.pushCallback(m_userHandler, RepeatElement::No);
        } else {
            TwitterRecordReading::skipContainer(parser);
        }
    }

    void parseUserJSON(KRJSONParser& parser) { m_status->fromUser()->parseUserJSON(parser); }

    void _takeMember(const KRJSONParser& parser)
    {
        const std::string_view key = parser.key().value_or(std::string_view());
        if (key == "id") {
            if (const QString text = parser.stringValue(); !text.isEmpty())
                m_status->setStatusID(text);
        } else if (key == "text") {
            if (const QString text = parser.stringValue(); !text.isNull())
                m_status->setText(KRAdditions::stringByUnescapingXMLEntities(text));
        } else if (key == "created_at") {
            _takeDate(parser);
        } else if (key == "in_reply_to_status_id") {
            if (const QString text = parser.stringValue(); !text.isEmpty())
                m_status->setInReplyToStatusID(text);
        } else if (m_status->isPartialStatus() && key == "from_user") {
            if (!parser.bytes().empty())
                _takeAuthor(_person(parser));
        } else if (m_status->isPartialStatus() && key == "profile_image_url") {
            if (!parser.bytes().empty())
                _takePicture(_imageURL(parser));
        }
    }

    void _takeDate(const KRJSONParser& parser)
    {
        // Dates are plain letters and short; only the text of a full one is kept.
        std::array<char16_t, 40> text {};
        const std::string_view bytes = parser.bytes();
        if (bytes.size() > text.size())
            return;
        std::copy(bytes.begin(), bytes.end(), text.begin());
        const QStringView view(text.data(), static_cast<qsizetype>(bytes.size()));
        if (const QDateTime date = KRAdditions::dateValueFromJSONTwitterDate(view); date.isValid()) {
            m_status->setDate(date);
        } else if (const QDateTime fullDate = KRAdditions::dateValueFromHTTPLikeDate(view);
                   fullDate.isValid()) {
            m_status->setDate(fullDate);
            m_status->setOriginalDateString(view.toString());
        }
    }

    static TwitterUserPtr _partialUser(const QString& name)
    {
        auto user = std::make_shared<TwitterUser>();
        user->setIsPartialUser(true);
        user->setUsername(name);
        user->setFullName(name);
        return user;
    }

    // One person with one picture is one record for all results. The picture may have come first.
    void _takeAuthor(const TwitterUserPtr& person)
    {
        const TwitterUserPtr& user = m_status->fromUser();
        if (user && person->profileImageURL().isEmpty())
            person->setProfileImageURL(user->profileImageURL());
        if (!user || user->profileImageURL() == person->profileImageURL()) {
            m_status->setFromUser(person);
        } else {
            user->setUsername(person->username());
            user->setFullName(person->fullName());
        }
    }

    void _takePicture(const QUrl& url)
    {
        const TwitterUserPtr& user = m_status->fromUser();
        if (!user || (!user->profileImageURL().isEmpty() && user->profileImageURL() != url))
            m_status->setFromUser(_partialUser(user ? user->username() : QString()));
        m_status->fromUser()->setProfileImageURL(url);
    }

    // What the parser is at, read once for all results that say the same.
    template <class Value, class Read>
    static const Value& _remembered(QHash<QByteArray, Value>& known, const KRJSONParser& parser, Read read)
    {
        const std::string_view bytes = parser.bytes();
        const auto length = static_cast<qsizetype>(bytes.size());
        const auto found = known.constFind(QByteArray::fromRawData(bytes.data(), length));
        if (found != known.constEnd())
            return *found;
        return *known.insert(QByteArray(bytes.data(), length), read(parser.stringValue()));
    }

    const TwitterUserPtr& _person(const KRJSONParser& parser)
    {
        return _remembered(m_people, parser, _partialUser);
    }

    const QUrl& _imageURL(const KRJSONParser& parser)
    {
        return _remembered(m_imageURLs, parser, TwitterUser::urlWithText);
    }

    KRJSONParser::Handler m_resultsHandler = _handler(&SearchReader::parseSearchStatusesJSON);
    KRJSONParser::Handler m_statusHandler = _handler(&SearchReader::parseStatusSearchJSON);
    KRJSONParser::Handler m_userHandler = _handler(&SearchReader::parseUserJSON);
    TwitterStatusList m_statuses;
    TwitterStatus* m_status = nullptr;
    QHash<QByteArray, TwitterUserPtr> m_people;
    QHash<QByteArray, QUrl> m_imageURLs;
    bool m_isFirstEvent = true;
};

} // namespace

KRResult<TwitterStatusList> TwitterStatus::statusesWithSearchJSON(const QByteArray& data)
{
    const TwitterReadingTime time;
    return SearchReader().read(data);
}

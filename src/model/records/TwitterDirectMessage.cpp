#include "model/records/TwitterDirectMessage.h"

#include "model/records/TwitterRecordOrder.h"
#include "model/records/TwitterRecordReading.h"
#include "text/KRDateAdditions.h"
#include "text/KRStringAdditions.h"

#include <QHash>

using namespace Qt::StringLiterals;

KRResult<TwitterDirectMessagePtr> TwitterDirectMessage::messageWithXML(const QByteArray& data)
{
    return TwitterRecordReading::recordWithXML(data, &TwitterDirectMessage::parseMessageXML);
}

KRResult<TwitterDirectMessageList> TwitterDirectMessage::messagesWithXML(const QByteArray& data)
{
    return TwitterRecordReading::recordsWithXML(data, &TwitterDirectMessage::parseMessagesXML);
}

void TwitterDirectMessage::parseMessagesXML(KRXMLParser& parser, TwitterDirectMessageList& messages)
{
    TwitterRecordReading::readRecord(parser,
        "direct_message",
        &TwitterDirectMessage::parseMessageXML,
        messages);
}

void TwitterDirectMessage::parseMessageXML(KRXMLParser& parser)
{
    const std::string_view element = parser.elementName();
    const auto readUser = [&parser](TwitterUserPtr& user) {
        user = std::make_shared<TwitterUser>();
        parser.pushCallback(Callback(user, &TwitterUser::parseUserXML), KRXMLParser::RepeatElement::No);
    };
    if (element == "sender")
        readUser(m_sender);
    else if (element == "recipient")
        readUser(m_recipient);
    else if (!parser.hasCharacters())
        return;
    else if (element == "id")
        m_messageID = parser.characters();
    else if (element == "text")
        setText(KRAdditions::stringByUnescapingXMLEntities(parser.characters()));
    else if (element == "created_at")
        m_date = KRAdditions::dateValueFromHTTPLikeDate(parser.characters());
}

void TwitterDirectMessage::setText(const QString& text)
{
    m_text = text.isNull() ? u""_s : text;
    m_activeTextRanges = KRActiveTextRanges(m_text);
}

bool TwitterDirectMessage::isEqual(const TwitterDirectMessage& other) const
{
    return this == &other || (!m_messageID.isNull() && m_messageID == other.m_messageID);
}

size_t TwitterDirectMessage::hashValue() const
{
    return m_messageID.isNull() ? qHash(this) : qHash(m_messageID);
}

std::weak_ordering TwitterDirectMessage::compare(const TwitterDirectMessage& other) const
{
    return compareNewestFirst(m_date, m_messageID, other.m_date, other.m_messageID);
}

QString TwitterDirectMessage::description() const
{
    return QString::asprintf("[TwitterDirectMessage:%p id:", static_cast<const void*>(this))
        + u"%1 text:%2 date:%3]"_s.arg(m_messageID, m_text, m_date.toString(Qt::ISODate));
}

#pragma once

#include "model/records/TwitterReadingTime.h"
#include "parsing/KRJSONParser.h"
#include "parsing/KRXMLParser.h"

#include <QList>

#include <memory>

/// What the record classes share in reading an answer. Any thread; the records are nobody else's until
/// the result is handed on.
namespace TwitterRecordReading {

/// One new record, which the document's elements are handed to.
template <class Record>
KRResult<std::shared_ptr<Record>> recordWithXML(const QByteArray& data, void (Record::*handler)(KRXMLParser&))
{
    const TwitterReadingTime time;
    auto record = std::make_shared<Record>();
    const KRResult<void> parsed = KRXMLParser::parseData(data, Callback(record, handler));
    if (parsed.isError())
        return parsed.error();
    return record;
}

/// For the handler of a list: at an element of that name appends a new record, which gets the element's
/// content. Other elements are passed over.
template <class Record>
void readRecord(KRXMLParser& parser,
    std::string_view elementName,
    void (Record::*handler)(KRXMLParser&),
    QList<std::shared_ptr<Record>>& records)
{
    if (parser.elementName() != elementName)
        return;
    records.append(std::make_shared<Record>());
    parser.pushCallback(Callback(records.last(), handler), KRXMLParser::RepeatElement::No);
}

/// The records of a document that the handler of a list reads.
template <class Record>
KRResult<QList<std::shared_ptr<Record>>> recordsWithXML(const QByteArray& data,
    void (*handler)(KRXMLParser&, QList<std::shared_ptr<Record>>&))
{
    const TwitterReadingTime time;
    QList<std::shared_ptr<Record>> records;
    const auto callback = KRXMLParser::Handler::withFunction(
        [handler, &records](KRXMLParser& parser) { handler(parser, records); });
    const KRResult<void> parsed = KRXMLParser::parseData(data, callback);
    if (parsed.isError())
        return parsed.error();
    return records;
}

/// For the handler of a record: the element and everything in it go to nobody.
inline void skipElement(KRXMLParser& parser)
{
    parser.pushCallback({}, KRXMLParser::RepeatElement::No);
}

/// For the handler of a record: an object or array goes to nobody. False at a scalar.
inline bool skipContainer(KRJSONParser& parser)
{
    using Type = KRJSONParser::Type;
    if (parser.type() != Type::ObjectStart && parser.type() != Type::ArrayStart)
        return false;
    parser.pushCallback({}, KRJSONParser::RepeatElement::No);
    return true;
}

} // namespace TwitterRecordReading

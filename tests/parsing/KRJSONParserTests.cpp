#include "parsing/KRJSONParser.h"
#include "support/KRTestLog.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Handler = KRJSONParser::Handler;
using RepeatElement = KRJSONParser::RepeatElement;
using Type = KRJSONParser::Type;

// Writes down how it is called: "label:key{" and "label:key[" for starts, "label:key=value" for scalars.
class Recorder {
public:
    QStringList calls;

    Handler handler(const QString& label)
    {
        return Handler::withFunction([this, label](KRJSONParser& parser) {
            EXPECT_FALSE(parser.numberValue());
            EXPECT_EQ(parser.booleanValue().has_value(), parser.type() == Type::Boolean);
            calls.append(label + u':' + keyOf(parser) + valueOf(parser));
        });
    }

    // Records under the label, and pushes the other handler at starts under that key.
    Handler
    pushingHandler(const QString& label, const QByteArray& key, const Handler& pushed, RepeatElement repeat)
    {
        const Handler recording = handler(label);
        return Handler::withFunction([=](KRJSONParser& parser) {
            recording.invoke(parser);
            if (parser.hasKey({ key.constData(), static_cast<size_t>(key.size()) }))
                parser.pushCallback(pushed, repeat);
        });
    }

private:
    static QString keyOf(const KRJSONParser& parser)
    {
        const auto key = parser.key();
        return key ? QString::fromUtf8(key->data(), static_cast<qsizetype>(key->size())) : u"-"_s;
    }

    static QString valueOf(const KRJSONParser& parser)
    {
        const QString text = parser.stringValue();
        EXPECT_TRUE(text.isNull() || parser.type() == Type::String);
        switch (parser.type()) {
        case Type::ObjectStart:
            return u"{"_s;
        case Type::ArrayStart:
            return u"["_s;
        case Type::String:
            return text.isNull() ? u"=no text"_s : u"='%1'"_s.arg(text);
        case Type::Null:
            return u"=null"_s;
        case Type::Boolean:
            return *parser.booleanValue() ? u"=true"_s : u"=false"_s;
        case Type::MemberName:
        case Type::Number:
            break;
        }
        return u"=?"_s;
    }
};

QString callsFor(const QByteArray& document)
{
    Recorder recorder;
    EXPECT_FALSE(KRJSONParser::parseData(document, recorder.handler(u"h"_s)).isError());
    return recorder.calls.join(u' ');
}

TEST(JSONParser, CallsForScalarsAndStarts)
{
    const struct {
        QByteArray document;
        QString calls;
    } cases[] = {
        { R"({"a":12345678901234,"b":-1.5e3,"c":"x","d":true,"e":false,"f":null})",
            u"h:-{ h:a='12345678901234' h:b='-1.5e3' h:c='x' h:d=true h:e=false h:f=null"_s },
        { R"([1,"",{"a":[2,[3]],"b":4},5])",
            u"h:-[ h:-='1' h:-='' h:-{ h:a[ h:-='2' h:-[ h:-='3' h:b='4' h:-='5'"_s },
        // The end of a container leaves no key behind, and a name that comes twice is told twice.
        { R"({"a":{"b":1},"a":2,"a":{}})", u"h:-{ h:a{ h:b='1' h:a='2' h:a{"_s },
        { R"({"é":"\u00e9\n\"\/ \ud83d\ude00 é😀"})", u"h:-{ h:é='é\n\"/ 😀 é😀'"_s },
        { R"({"a":"\udc00","b":"x\ude00y","c":"z"})", u"h:-{ h:a=no text h:b=no text h:c='z'"_s },
        { R"({"\u00e9\"k":1,"x":{"\u00e9":"\t"},"y\n":[2]})",
            u"h:-{ h:é\"k='1' h:x{ h:é='\t' h:y\n[ h:-='2'"_s },
        { "\xEF\xBB\xBF[true]", u"h:-[ h:-=true"_s },
        { "/* one */ [1, // two\n 2]", u"h:-[ h:-='1' h:-='2'"_s },
        { QByteArray("[1,2\0,3]", 8), u"h:-[ h:-='1'"_s },
        { QByteArray("\0[1]", 4), {} },
        { QByteArray(), {} },
        { "[1,}2]", u"h:-[ h:-='1'"_s },
        { "<html>", {} },
    };
    for (const auto& test : cases)
        EXPECT_EQ(callsFor(test.document), test.calls) << test.document.constData();
}

TEST(JSONParser, APushedHandlerHasTheContentOfItsContainer)
{
    const QByteArray document = R"([{"b":[1,{"c":2}],"d":3},4])";
    const auto callsWith = [&document](RepeatElement repeat) {
        Recorder recorder;
        const Handler outer = recorder.pushingHandler(u"outer"_s, "b", recorder.handler(u"inner"_s), repeat);
        EXPECT_FALSE(KRJSONParser::parseData(document, outer).isError());
        return recorder.calls.join(u' ');
    };
    EXPECT_EQ(callsWith(RepeatElement::No),
        u"outer:-[ outer:-{ outer:b[ inner:-='1' inner:-{ inner:c='2' outer:d='3' outer:-='4'"_s);
    EXPECT_EQ(callsWith(RepeatElement::Yes),
        u"outer:-[ outer:-{ outer:b[ inner:b[ inner:-='1' inner:-{ inner:c='2' outer:d='3' outer:-='4'"_s);

    Recorder recorder;
    ASSERT_FALSE(
        KRJSONParser::parseData(document, recorder.pushingHandler(u"h"_s, "b", {}, RepeatElement::No))
            .isError());
    EXPECT_EQ(recorder.calls.join(u' '), u"h:-[ h:-{ h:b[ h:d='3' h:-='4'"_s) << "nobody reads \"b\"";
}

TEST(JSONParser, PushingAtAScalarIsRefused)
{
    KRTestLog log;
    Recorder recorder;
    const Handler handler = recorder.pushingHandler(u"h"_s, "a", recorder.handler(u"x"_s), RepeatElement::No);
    ASSERT_FALSE(KRJSONParser::parseData(R"({"a":1,"b":2})", handler).isError());
    EXPECT_EQ(recorder.calls.join(u' '), u"h:-{ h:a='1' h:b='2'"_s);
    EXPECT_EQ(log.lines(), QStringList(u"Error: trying to push json callback when you shouldn't"_s));
}

TEST(JSONParser, BytesThatAreNoTextAreAnError)
{
    for (const QByteArray& document :
        { QByteArray("[\"\xff\"]"), QByteArray("[1]\xc3"), QByteArray("[\"\xed\xb0\x80\"]") }) {
        KRTestLog log;
        Recorder recorder;
        const auto result = KRJSONParser::parseData(document, recorder.handler(u"h"_s));
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.error(),
            errorWithDomain(u"com.kestrin.json-error"_s, -1, u"Error: could not convert to UTF8"_s));
        EXPECT_EQ(log.lines(), QStringList(u"Error: could not convert to UTF8"_s));
        EXPECT_TRUE(recorder.calls.isEmpty());
    }
}

TEST(JSONParser, ADocumentCutAnywhereTellsWhatCameBefore)
{
    const QByteArray document = R"({"a":[1,{"b":"x\u00e9\ud83d\ude00"}],"c":null,"d":[true,-2.5e+10]})";
    const QString all = callsFor(document);
    for (qsizetype length = 0; length < document.size(); ++length) {
        const QString calls = callsFor(document.first(length));
        EXPECT_TRUE(all.startsWith(calls)) << qPrintable(calls);
    }
}

TEST(JSONParser, HostileDocumentsAreSurvived)
{
    constexpr int deep = 100'000;
    for (const QByteArray& opening : { QByteArray("["), QByteArray(R"({"a":)"), QByteArray(R"([{"a":)") }) {
        Recorder recorder;
        ASSERT_FALSE(KRJSONParser::parseData(opening.repeated(deep), recorder.handler(u"h"_s)).isError());
        EXPECT_EQ(recorder.calls.size(), deep * opening.count('[') + deep * opening.count('{'));
    }
    EXPECT_EQ(callsFor(QByteArray("]").repeated(deep)), QString());
    EXPECT_EQ(callsFor(QByteArray("[").repeated(deep) + QByteArray("]").repeated(deep)).count(u'['), deep);

    const QByteArray digits(400, '9');
    EXPECT_EQ(callsFor('[' + digits + ",-" + digits + ".5e" + digits + ']'),
        QString::fromLatin1("h:-[ h:-='" + digits + "' h:-='-" + digits + ".5e" + digits + '\''));
    EXPECT_EQ(callsFor("[\"" + QByteArray(5'000'000, 'x') + "\"]").size(), 5'000'011);
    EXPECT_EQ(callsFor(QByteArray("[\"\\udc00\",\"\\ud83d\"]")).count(u"h:-="_s), 2);
}

} // namespace

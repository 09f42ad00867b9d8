#include "KRCallRecorder.h"
#include "parsing/KRJSONParser.h"

namespace {

using RepeatElement = KRJSONParser::RepeatElement;
using Type = KRJSONParser::Type;

// "key{" and "key[" for starts, "key=value" for scalars, "-" in place of a key that is none.
QString describe(const KRJSONParser& parser)
{
    EXPECT_FALSE(parser.numberValue());
    EXPECT_EQ(parser.booleanValue().has_value(), parser.type() == Type::Boolean);
    const auto key = parser.key();
    const QString name = key ? QString::fromUtf8(key->data(), static_cast<qsizetype>(key->size())) : u"-"_s;
    EXPECT_EQ(key && parser.hasKey(*key), key.has_value());
    const QString text = parser.stringValue();
    EXPECT_TRUE(text.isNull() || parser.type() == Type::String);
    switch (parser.type()) {
    case Type::ObjectStart:
        return name + u'{';
    case Type::ArrayStart:
        return name + u'[';
    case Type::String:
        return name + (text.isNull() ? u"=no text"_s : u"='%1'"_s.arg(text));
    case Type::Null:
        return name + u"=null"_s;
    case Type::Boolean:
        return name + (*parser.booleanValue() ? u"=true"_s : u"=false"_s);
    case Type::MemberName:
    case Type::Number:
        break;
    }
    return name + u'?';
}

class JSONParser : public testing::Test {
protected:
    KRCallRecorder<KRJSONParser> recorder { describe };
};

TEST_F(JSONParser, CallsForScalarsAndStarts)
{
    const std::pair<QByteArray, QString> cases[] = {
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
    for (const auto& [document, calls] : cases)
        EXPECT_EQ(recorder.callsFor(document), calls) << document.constData();

    const QByteArray document = R"({"a":[1,{"b":"x\u00e9\ud83d\ude00"}],"c":null,"d":[true,-2.5e+10]})";
    const QString all = recorder.callsFor(document);
    for (qsizetype length = 0; length < document.size(); ++length) {
        const QString calls = recorder.callsFor(document.first(length));
        EXPECT_TRUE(all.startsWith(calls)) << "cut at " << length << ": " << qPrintable(calls);
    }
}

TEST_F(JSONParser, APushedHandlerHasTheContentOfItsContainer)
{
    const QByteArray document = R"([{"b":[1,{"c":2}],"d":3},4])";
    const auto inner = recorder.handler(u"inner"_s);
    EXPECT_EQ(recorder.callsFor(document, recorder.handler(u"outer"_s, u"b["_s, inner)),
        u"outer:-[ outer:-{ outer:b[ inner:-='1' inner:-{ inner:c='2' outer:d='3' outer:-='4'"_s);
    EXPECT_EQ(recorder.callsFor(document, recorder.handler(u"outer"_s, u"b["_s, inner, RepeatElement::Yes)),
        u"outer:-[ outer:-{ outer:b[ inner:b[ inner:-='1' inner:-{ inner:c='2' outer:d='3' outer:-='4'"_s);
    EXPECT_EQ(recorder.callsFor(document, recorder.handler(u"h"_s, u"b["_s, {})),
        u"h:-[ h:-{ h:b[ h:d='3' h:-='4'"_s)
        << "nobody reads \"b\"";
    EXPECT_EQ(recorder.callsFor(R"([{"a":{"b":[1],"c":2},"d":3}])",
                  recorder.handler(u"1"_s, u"a{"_s, recorder.handler(u"2"_s, u"b["_s, inner))),
        u"1:-[ 1:-{ 1:a{ 2:b[ inner:-='1' 2:c='2' 1:d='3'"_s);

    KRTestLog log;
    EXPECT_EQ(recorder.callsFor(R"({"a":1,"b":2})", recorder.handler(u"h"_s, u"a='1'"_s, inner)),
        u"h:-{ h:a='1' h:b='2'"_s);
    EXPECT_EQ(log.lines(), QStringList(u"Error: trying to push json callback when you shouldn't"_s));
}

TEST_F(JSONParser, BytesThatAreNoTextAreAnError)
{
    for (const QByteArray& document :
        { QByteArray("[\"\xff\"]"), QByteArray("[1]\xc3"), QByteArray("[\"\xed\xb0\x80\"]") }) {
        KRTestLog log;
        const auto result = KRJSONParser::parseData(document,
            KRJSONParser::Handler::withFunction([](const auto&) { ADD_FAILURE() << "told of it"; }));
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.error(),
            errorWithDomain(u"com.kestrin.json-error"_s, -1, u"Error: could not convert to UTF8"_s));
        EXPECT_EQ(log.lines(), QStringList(u"Error: could not convert to UTF8"_s));
    }
}

TEST_F(JSONParser, HostileDocumentsAreSurvived)
{
    constexpr int deep = 100'000;
    for (const QByteArray& opening : { QByteArray("["), QByteArray(R"({"a":)"), QByteArray(R"([{"a":)") })
        EXPECT_EQ(recorder.callsFor(opening.repeated(deep)).count(u'h'), deep * opening.count("[{") + deep);
    EXPECT_EQ(recorder.callsFor(QByteArray("]").repeated(deep)), QString());
    EXPECT_EQ(recorder.callsFor(QByteArray("[").repeated(deep) + QByteArray("]").repeated(deep)).count(u'['),
        deep);

    const QByteArray digits(400, '9');
    EXPECT_EQ(recorder.callsFor('[' + digits + ",-" + digits + ".5e" + digits + ']'),
        QString::fromLatin1("h:-[ h:-='" + digits + "' h:-='-" + digits + ".5e" + digits + '\''));
    EXPECT_EQ(recorder.callsFor("[\"" + QByteArray(5'000'000, 'x') + "\"]").size(), 5'000'011);
}

} // namespace

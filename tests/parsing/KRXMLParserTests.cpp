#include "KRCallRecorder.h"
#include "parsing/KRXMLForbiddenCharacters.h"
#include "parsing/KRXMLParser.h"

#include <malloc.h>
#include <random>

using namespace std::string_literals;

namespace {

using Handler = KRXMLParser::Handler;
using RepeatElement = KRXMLParser::RepeatElement;

// The element, with "=text" where there is text.
QString describe(const KRXMLParser& parser)
{
    EXPECT_EQ(parser.hasCharacters(), !parser.characters().isNull());
    const QString name
        = QString::fromUtf8(parser.elementName().data(), static_cast<qsizetype>(parser.elementName().size()));
    return parser.hasCharacters() ? name + u'=' + parser.characters() : name;
}

int errorCodeFor(const QByteArray& document)
{
    KRTestLog log;
    const auto result = KRXMLParser::parseData(document, Handler::withFunction([](KRXMLParser&) {}));
    if (!result.isError())
        return 0;
    EXPECT_EQ(result.error().domain, u"com.kestrin.xmlparser-error"_s);
    EXPECT_EQ(log.lines(), QStringList(u"XML Error: "_s + result.error().description));
    EXPECT_LE(result.error().description.size(), 4096);
    EXPECT_EQ(result.error().description.isEmpty(), document.isEmpty());
    return result.error().code;
}

class XMLParser : public testing::Test {
protected:
    KRCallRecorder<KRXMLParser> recorder { describe };
};

TEST_F(XMLParser, CallsAtStartTagsAndAtEndTagsWithText)
{
    const std::pair<const char*, QString> cases[] = {
        { "<a> \n\t </a>", u"h:a"_s },
        { "<a>&#9;&#13;</a>", u"h:a"_s },
        { "<a><b>x</b></a>", u"h:a h:b h:b=x"_s },
        { "<a>  x y \r\n\t</a>", u"h:a h:a=x y"_s },
        { "<a>x &amp; <![CDATA[<y>]]>&#33;</a>", u"h:a h:a=x & <y>!"_s },
        // Text in front of a child is seen with the child and goes with its end.
        { "<a>1<b>2</b>3<c/>4</a>", u"h:a h:b=1 h:b=12 h:c=3 h:c=3 h:a=4"_s },
        { "<a>\u00a0\u2003</a>", u"h:a"_s },
        { "<a>\u00a0\u2003é\u00a0</a>", u"h:a h:a=é"_s },
        { "<p:a q:b='1'><none:c>x</none:c></p:a>", u"h:p:a h:none:c h:none:c=x"_s },
        { "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xe9</a>", u"h:a h:a=é"_s },
        { "<?xml version='1.0'?><!-- c --><a><?pi?>x<!-- d -->y</a>", u"h:a h:a=xy"_s },
        // Nothing outside of the document is read.
        { "<!DOCTYPE a SYSTEM 'file:///etc/hostname'><a>&x;y</a>", u"h:a h:a=y"_s },
    };
    for (const auto& [document, calls] : cases)
        EXPECT_EQ(recorder.callsFor(document), calls) << document;
}

TEST_F(XMLParser, APushedHandlerHasTheContentOfItsElement)
{
    const QByteArray document = "<a><b>1<c>2</c><d/>3</b><e>4</e></a>";
    const Handler inner = recorder.handler(u"inner"_s);
    EXPECT_EQ(recorder.callsFor(document, recorder.handler(u"outer"_s, u"b"_s, inner)),
        u"outer:a outer:b inner:c=1 inner:c=12 inner:d inner:b=3 outer:e outer:e=4"_s);
    EXPECT_EQ(recorder.callsFor(document, recorder.handler(u"outer"_s, u"b"_s, inner, RepeatElement::Yes)),
        u"outer:a outer:b inner:b inner:c=1 inner:c=12 inner:d inner:b=3 outer:e outer:e=4"_s);
    EXPECT_EQ(recorder.callsFor("<a><skip>1<b>2<skip/></b>3</skip>4<c>5</c>6</a>",
                  recorder.handler(u"h"_s, u"skip"_s, {})),
        u"h:a h:skip h:c=4 h:c=45 h:a=6"_s)
        << "nobody reads it";
    // The handler that is pushed first by a repeated push stays when the element ends.
    const Handler middle = recorder.handler(u"2"_s, u"b"_s, inner);
    EXPECT_EQ(recorder.callsFor("<a><b><x/></b><y/></a>",
                  recorder.handler(u"1"_s, u"b"_s, middle, RepeatElement::Yes)),
        u"1:a 1:b 2:b inner:x 2:y"_s);

    KRTestLog log;
    (void)recorder.callsFor("<a>x</a>", recorder.handler(u"h"_s, u"a=x"_s, inner));
    EXPECT_EQ(log.lines(),
        QStringList(u"XML push callback error: can only push callback from a start element callback"_s));
}

TEST_F(XMLParser, AttributesAreThereAtStartTagsOnly)
{
    QList<QMap<QString, QString>> seen;
    ASSERT_FALSE(KRXMLParser::parseData("<a x='1&amp;2&#38;3' p:y='&lt;é'><b>t</b></a>",
        Handler::withFunction([&seen](KRXMLParser& parser) {
            seen.append(parser.attributes());
        })).isError());
    EXPECT_EQ(seen,
        (QList<QMap<QString, QString>> { { { u"x"_s, u"1&2&3"_s }, { u"p:y"_s, u"<é"_s } }, {}, {} }));
}

TEST_F(XMLParser, MissingArguments)
{
    for (const auto& result :
        { KRXMLParser::parseData({}, recorder.handler(u"h"_s)), KRXMLParser::parseData("<a/>", {}) }) {
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.error(),
            errorWithDomain(u"com.kestrin.xmlparser"_s, -1, u"No data or callback specified"_s));
    }
}

TEST_F(XMLParser, MalformedAndHostileDocumentsAreOneError)
{
    QByteArray bomb = "<!DOCTYPE a [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 12; ++i) {
        const QByteArray reference = "&e" + QByteArray::number(i - 1) + ";";
        bomb += "<!ENTITY e" + QByteArray::number(i) + " '" + reference.repeated(10) + "'>";
    }
    bomb += "]><a>&e11;</a>";
    const QByteArray longest("<a>" + QByteArray(KRXMLParser::MaximumTextLength, 'x'));
    // Codes of libxml2's xmlParserErrors.
    const std::pair<QByteArray, int> cases[] = {
        { QByteArray(""), -1 },
        { "  ", 4 },
        { "<a><b></a>", 77 },
        { "<a>cut", 77 },
        { "<a>\x01</a>", 9 },
        { "<a>\xff</a>", 9 },
        { "<a>&unknown;</a>", 26 },
        { QByteArray("<a>").repeated(100000), 1 },
        { longest + "</a>", 0 },
        { longest + "x</a>", 111 },
        { "<a b='" + QByteArray(20'000'000, 'x') + "'/>", 5 },
        { "<!DOCTYPE html><html><p>" + QByteArray("<br>&nbsp;</i>").repeated(10000), 77 },
        { bomb, 26 },
        { "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><a>&e;</a>", 26 },
    };
    for (const auto& [document, code] : cases)
        EXPECT_EQ(errorCodeFor(document), code) << document.first(20).constData();

    // What libxml2 leaves behind when it stops among the entities is let go.
    const QByteArray longEntity = "<!DOCTYPE a [<!ENTITY e '" + QByteArray(10'000'001, 'x') + "'>]><a/>";
    size_t used = 0;
    for (int round = 0; round < 10; ++round) {
        EXPECT_EQ(errorCodeFor(longEntity), 1);
        used = round == 5 ? mallinfo2().uordblks : used;
    }
    EXPECT_LT(mallinfo2().uordblks, used + 5'000);
}

TEST(XMLForbiddenCharacters, AreReplacedAndNothingElse)
{
    const std::pair<std::string, std::string> cases[] = {
        { "<a>\x01\0\x1f</a>"s, "<a>\uFFFD\uFFFD\uFFFD</a>" },
        { "<a\0/>"s, "<a\uFFFD/>" },
        { "<a>\uFFFE|\uFFFF</a>", "<a>\uFFFD|\uFFFD</a>" },
        { "<a>&#x8;&#0;&#31;&#xD800;&#xDFFF;&#xfffe;&#x110000;&#99999999999;</a>",
            "<a>\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD</a>" },
        // Surrogates written as UTF-8, overlong forms, a cut sequence, stray bytes, more than there are.
        { "<a>\xED\xA0\x80|\xC0\x80|\xE0\x9F\xBF|\xE2\x82|\xFF|\x80\xBF\xBF|\xF5\x80\x80\x80</a>",
            "<a>\uFFFD|\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD|\uFFFD|\uFFFD\uFFFD\uFFFD|"
            "\uFFFD\uFFFD\uFFFD\uFFFD</a>" },
        { "<a>\xF0\x9F", "<a>\uFFFD\uFFFD" },
        { "<a><![CDATA[&#8;\x08]]>&#8;</a>", "<a><![CDATA[&#8;\uFFFD]]>\uFFFD</a>" },
        { "<?xml version='1.0' encoding='UTF-8'?><a>\x08\xe9</a>",
            "<?xml version='1.0' encoding='UTF-8'?><a>\uFFFD\uFFFD</a>" },
        // Nothing, or nothing readable, is said of the encoding.
        { "<?xml version='1.0'?><a b='encoding'>\xe9</a>",
            "<?xml version='1.0'?><a b='encoding'>\uFFFD</a>" },
        { "<?xml encoding?><a>\xe9</a>", "<?xml encoding?><a>\uFFFD</a>" },
        { "<?xml version='1.0' encoding='ISO-8859-1'?><a>\x08\xe9</a>",
            "<?xml version='1.0' encoding='ISO-8859-1'?><a>&#xFFFD;\xe9</a>" },
    };
    for (const auto& [document, expected] : cases)
        EXPECT_EQ(KRXMLByReplacingForbiddenCharacters(QByteArray::fromStdString(document)),
            QByteArray::fromStdString(expected));

    for (const std::string& document :
        { "<a>\t\n\r \u0080 \u07ff \u0800 日本 \uFFFD \U00010000 \U0010FFFF "
          "&#9;&#10;&#13;&#32;&#xD7FF;&#xE000;"
          "&#xFFFD;&#x10000;&#x10FFFF; &amp; &#; &#8 &#xg; &#x1@; &#x1G; &#x1`; &#1A; &#1/; &#1:;</a>"s,
            "\xFE\xFF\0<\0a"s,
            "\xFF\xFE<a"s,
            "<\0a\0"s,
            "cut &#8"s,
            "cut é"s,
            ""s })
        EXPECT_EQ(KRXMLByReplacingForbiddenCharacters(QByteArray::fromStdString(document)), std::nullopt)
            << document;
}

TEST(XMLForbiddenCharacters, WhatIsLeftParses)
{
    // Whatever bytes stand between the tags, the page is readable afterwards.
    std::mt19937 random(7);
    const auto ignore = KRXMLParser::Handler::withFunction([](KRXMLParser&) {});
    for (int round = 0; round < 500; ++round) {
        QByteArray document = "<a>";
        for (int i = 0; i < 40; ++i) {
            const char byte = static_cast<char>(random() % 256);
            document.append(byte == '<' || byte == '&' || byte == ']' ? ' ' : byte);
        }
        document.append("&#" + QByteArray::number(static_cast<uint>(random() % 0x120000)) + ";</a>");
        const QByteArray repaired = KRXMLByReplacingForbiddenCharacters(document).value_or(document);
        EXPECT_FALSE(KRXMLParser::parseData(repaired, ignore).isError()) << repaired.toHex().constData();
        EXPECT_EQ(KRXMLByReplacingForbiddenCharacters(repaired), std::nullopt);
    }
}

} // namespace

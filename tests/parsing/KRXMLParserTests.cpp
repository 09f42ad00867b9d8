#include "parsing/KRXMLParser.h"
#include "support/KRTestLog.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Handler = KRXMLParser::Handler;
using RepeatElement = KRXMLParser::RepeatElement;

// Writes down how it is called, as "label:element", with "=text" where there is text.
class Recorder {
public:
    QStringList calls;

    Handler handler(const QString& label)
    {
        return Handler::withFunction([this, label](KRXMLParser& parser) {
            QString call = label + u':' + nameOf(parser);
            if (parser.hasCharacters())
                call += u'=' + parser.characters();
            EXPECT_EQ(parser.hasCharacters(), !parser.characters().isNull());
            calls.append(call);
        });
    }

    // Records under the label, and pushes the other handler at start tags of that name.
    Handler
    pushingHandler(const QString& label, const QString& element, const Handler& pushed, RepeatElement repeat)
    {
        const Handler recording = handler(label);
        return Handler::withFunction([=](KRXMLParser& parser) {
            recording.invoke(parser);
            if (nameOf(parser) == element && !parser.hasCharacters())
                parser.pushCallback(pushed, repeat);
        });
    }

    static QString nameOf(const KRXMLParser& parser)
    {
        return QString::fromUtf8(parser.elementName().data(),
            static_cast<qsizetype>(parser.elementName().size()));
    }
};

QStringList callsFor(const QByteArray& document)
{
    Recorder recorder;
    EXPECT_FALSE(KRXMLParser::parseData(document, recorder.handler(u"h"_s)).isError())
        << document.constData();
    return recorder.calls;
}

int errorCodeFor(const QByteArray& document)
{
    KRTestLog log;
    Recorder recorder;
    const auto result = KRXMLParser::parseData(document, recorder.handler(u"h"_s));
    if (!result.isError())
        return 0;
    EXPECT_EQ(result.error().domain, u"com.kestrin.xmlparser-error"_s);
    EXPECT_EQ(log.lines(), QStringList(u"XML Error: "_s + result.error().description));
    EXPECT_LE(result.error().description.size(), 4096);
    return result.error().code;
}

TEST(XMLParser, CallsAtStartTagsAndAtEndTagsWithText)
{
    const struct {
        const char* document;
        QStringList calls;
    } cases[] = {
        { "<a> \n\t </a>", { u"h:a"_s } },
        { "<a><b>x</b></a>", { u"h:a"_s, u"h:b"_s, u"h:b=x"_s } },
        { "<a>  x y \r\n</a>", { u"h:a"_s, u"h:a=x y"_s } },
        { "<a>x &amp; <![CDATA[<y>]]>&#33;</a>", { u"h:a"_s, u"h:a=x & <y>!"_s } },
        // Text in front of a child is seen with the child and goes with its end.
        { "<a>1<b>2</b>3<c/>4</a>",
            { u"h:a"_s, u"h:b=1"_s, u"h:b=12"_s, u"h:c=3"_s, u"h:c=3"_s, u"h:a=4"_s } },
        { "<a>\u00a0\u2003</a>", { u"h:a"_s } },
        { "<a>\u00a0\u2003é\u00a0</a>", { u"h:a"_s, u"h:a=é"_s } },
        { "<p:a q:b='1'><none:c>x</none:c></p:a>", { u"h:p:a"_s, u"h:none:c"_s, u"h:none:c=x"_s } },
        { "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xe9</a>", { u"h:a"_s, u"h:a=é"_s } },
        { "<?xml version='1.0'?><!-- c --><a><?pi?>x<!-- d -->y</a>", { u"h:a"_s, u"h:a=xy"_s } },
    };
    for (const auto& test : cases)
        EXPECT_EQ(callsFor(test.document), test.calls) << test.document;
}

TEST(XMLParser, APushedHandlerHasTheContentOfItsElement)
{
    const QByteArray document = "<a><b>1<c>2</c><d/>3</b><e>4</e></a>";
    Recorder recorder;
    ASSERT_FALSE(KRXMLParser::parseData(document,
        recorder.pushingHandler(u"outer"_s, u"b"_s, recorder.handler(u"inner"_s), RepeatElement::No))
                     .isError());
    EXPECT_EQ(recorder.calls,
        (QStringList { u"outer:a"_s,
            u"outer:b"_s,
            u"inner:c=1"_s,
            u"inner:c=12"_s,
            u"inner:d"_s,
            u"inner:b=3"_s,
            u"outer:e"_s,
            u"outer:e=4"_s }));

    recorder.calls.clear();
    ASSERT_FALSE(KRXMLParser::parseData(document,
        recorder.pushingHandler(u"outer"_s, u"b"_s, recorder.handler(u"inner"_s), RepeatElement::Yes))
                     .isError());
    EXPECT_EQ(recorder.calls.mid(0, 4),
        (QStringList { u"outer:a"_s, u"outer:b"_s, u"inner:b"_s, u"inner:c=1"_s }));
}

TEST(XMLParser, EachPushAddsAnEntryAndEachElementTakesOne)
{
    // The handler that is pushed first by a repeated push stays when the element ends.
    Recorder recorder;
    const Handler innermost = recorder.handler(u"3"_s);
    const Handler middle = recorder.pushingHandler(u"2"_s, u"b"_s, innermost, RepeatElement::No);
    ASSERT_FALSE(KRXMLParser::parseData("<a><b><x/></b><y/></a>",
        recorder.pushingHandler(u"1"_s, u"b"_s, middle, RepeatElement::Yes))
                     .isError());
    EXPECT_EQ(recorder.calls, (QStringList { u"1:a"_s, u"1:b"_s, u"2:b"_s, u"3:x"_s, u"2:y"_s }));
}

TEST(XMLParser, AnEmptyCallbackSkipsASubtree)
{
    Recorder recorder;
    ASSERT_FALSE(KRXMLParser::parseData("<a><skip>1<b>2<skip/></b>3</skip>4<c>5</c>6</a>",
        recorder.pushingHandler(u"h"_s, u"skip"_s, {}, RepeatElement::No))
                     .isError());
    EXPECT_EQ(recorder.calls, (QStringList { u"h:a"_s, u"h:skip"_s, u"h:c=4"_s, u"h:c=45"_s, u"h:a=6"_s }));
}

TEST(XMLParser, AttributesAreThereAtStartTagsOnly)
{
    QList<QMap<QString, QString>> seen;
    ASSERT_FALSE(KRXMLParser::parseData("<a x='1&amp;2&#38;3' p:y='&lt;é'><b>t</b></a>",
        Handler::withFunction([&seen](KRXMLParser& parser) {
            seen.append(parser.attributes());
        })).isError());
    EXPECT_EQ(seen,
        (QList<QMap<QString, QString>> { { { u"x"_s, u"1&2&3"_s }, { u"p:y"_s, u"<é"_s } }, {}, {} }));
}

TEST(XMLParser, PushingAtAnEndTagIsRefused)
{
    KRTestLog log;
    ASSERT_FALSE(KRXMLParser::parseData("<a>x</a>", Handler::withFunction([](KRXMLParser& parser) {
        if (parser.hasCharacters())
            parser.pushCallback({}, RepeatElement::No);
    })).isError());
    EXPECT_EQ(log.lines(),
        QStringList(u"XML push callback error: can only push callback from a start element callback"_s));
}

TEST(XMLParser, MissingArguments)
{
    for (const auto& result :
        { KRXMLParser::parseData({}, Recorder().handler(u"h"_s)), KRXMLParser::parseData("<a/>", {}) }) {
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.error(),
            errorWithDomain(u"com.kestrin.xmlparser"_s, -1, u"No data or callback specified"_s));
    }
}

TEST(XMLParser, MalformedAndHostileDocumentsAreOneError)
{
    // Codes of libxml2's xmlParserErrors.
    EXPECT_EQ(errorCodeFor(QByteArray("")), -1);
    EXPECT_EQ(errorCodeFor("  "), 4);
    EXPECT_EQ(errorCodeFor("<a><b></a>"), 77);
    EXPECT_EQ(errorCodeFor("<a>cut"), 77);
    EXPECT_EQ(errorCodeFor("<a>\x01</a>"), 9);
    EXPECT_EQ(errorCodeFor("<a>\xff</a>"), 9);
    EXPECT_EQ(errorCodeFor("<a>&unknown;</a>"), 26);
    EXPECT_EQ(errorCodeFor(QByteArray("<a>").repeated(100000)), 1);
    EXPECT_EQ(errorCodeFor("<a>" + QByteArray(50'000'000, 'x') + "</a>"), 111);
    EXPECT_NE(errorCodeFor("<a b='" + QByteArray(20'000'000, 'x') + "'/>"), 0);
    EXPECT_NE(errorCodeFor("<!DOCTYPE html><html><p>" + QByteArray("<br>&nbsp;</i>").repeated(10000)), 0);

    QByteArray bomb = "<!DOCTYPE a [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 12; ++i) {
        const QByteArray reference = "&e" + QByteArray::number(i - 1) + ";";
        bomb += "<!ENTITY e" + QByteArray::number(i) + " '" + reference.repeated(10) + "'>";
    }
    EXPECT_EQ(errorCodeFor(bomb + "]><a>&e11;</a>"), 26);
    EXPECT_EQ(errorCodeFor("<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><a>&e;</a>"), 26);
}

TEST(XMLParser, NothingOutsideTheDocumentIsRead)
{
    KRTestLog log;
    Recorder recorder;
    ASSERT_FALSE(KRXMLParser::parseData("<!DOCTYPE a SYSTEM 'file:///etc/hostname'><a>&x;y</a>",
        recorder.handler(u"h"_s))
                     .isError());
    EXPECT_EQ(recorder.calls, (QStringList { u"h:a"_s, u"h:a=y"_s }));
}

} // namespace

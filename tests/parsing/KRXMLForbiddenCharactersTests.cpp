#include "parsing/KRXMLForbiddenCharacters.h"
#include "parsing/KRXMLParser.h"
#include "support/KRTest.h"

#include <random>

using namespace std::string_literals;

namespace {

TEST(XMLForbiddenCharacters, AreReplacedAndNothingElse)
{
    const struct {
        std::string document;
        std::string expected;
    } cases[] = {
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
    for (const auto& test : cases)
        EXPECT_EQ(KRXMLByReplacingForbiddenCharacters(QByteArray::fromStdString(test.document)),
            QByteArray::fromStdString(test.expected));

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

#include "Text.h"

#include "support/KRTest.h"

using namespace localservice;

TEST(LocalServiceTextTest, DatesHaveTheThreeForms)
{
    EXPECT_EQ(restDate(1219842525), "Wed Aug 27 13:08:45 +0000 2008");
    EXPECT_EQ(searchDate(1219842525), "Wed, 27 Aug 2008 13:08:45 +0000");
    EXPECT_EQ(isoDate(1219842525), "2008-08-27T13:08:45+00:00");
}

TEST(LocalServiceTextTest, FormsAndCredentialsAreDecoded)
{
    const Parameters expected { { "a", "1 2" },
        { "b&=", "%zz%4" },
        { "c", "" },
        { "d", "x=y" },
        { "e", "é" } };
    EXPECT_EQ(parametersOfForm("a=1+2&&b%26%3D=%zz%4&c&d=x=y&e=%c3%A9&"), expected);
    EXPECT_EQ(decodedBase64("YWxpY2U6d29uZGVybGFuZA=="), "alice:wonderland");
    EXPECT_EQ(decodedBase64("not base64!"), std::nullopt);
    EXPECT_EQ(decimalNumber("0012"), 12);
    EXPECT_EQ(decimalNumber("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(decimalNumber("9223372036854775808"), INT64_MAX);
    for (const char* noNumber : { "", "-1", "1 ", "0x1" })
        EXPECT_EQ(decimalNumber(noNumber), std::nullopt) << noNumber;
}

TEST(LocalServiceTextTest, LinksPeopleAndTagsAreFound)
{
    const auto marked = [](std::string_view text) {
        std::string result;
        for (const TextPiece& piece : piecesOfText(text))
            result += piece.kind == TextPiece::Kind::Plain ? piece.text
                : piece.kind == TextPiece::Kind::Link      ? "L[" + piece.text + "]"
                : piece.kind == TextPiece::Kind::Mention   ? "M[" + piece.text + "]"
                                                           : "T[" + piece.text + "]";
        return result;
    };
    const std::pair<const char*, const char*> cases[] = {
        { "see http://a.example/b_(c) now", "see L[http://a.example/b_(c)] now" },
        { "(http://a.example/b).", "(L[http://a.example/b])." },
        { "www.a.example, and xwww.b.example", "L[www.a.example], and xwww.b.example" },
        { "@bob's bob@example.org @", "M[@bob]'s bob@example.org @" },
        { "#łódź #日本語. a#b #", "T[#łódź] T[#日本語]. a#b #" },
        { "", "" },
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(marked(text), expected);
}

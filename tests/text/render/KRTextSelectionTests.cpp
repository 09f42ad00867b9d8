#include "support/KRTest.h"
#include "text/render/KRTextSelection.h"

namespace {

using Unit = KRTextSelection::Unit;
using enum KRTextSelection::Extend;

TEST(KRTextSelectionTests, StopsBetweenCharactersAndWords)
{
    struct {
        QString text;
        QList<qsizetype> characters;
        QList<qsizetype> wordEnds;
    } const cases[] = {
        { u"ab, cd"_s, { 1, 2, 3, 4, 5, 6 }, { 2, 6 } },
        { u"e\u0301x"_s, { 2, 3 }, { 3 } },
        { u"👩‍👩‍👧 a"_s, { 8, 9, 10 }, { 10 } },
        { u"שלום @me"_s, { 1, 2, 3, 4, 5, 6, 7, 8 }, { 4, 8 } },
        { QString(5, QChar(0x301)), { 5 }, { 5 } },
        { u""_s, {}, {} },
    };
    for (const auto& [text, characters, wordEnds] : cases) {
        SCOPED_TRACE(qPrintable(text));
        QList<qsizetype> stops { 0 };
        KRTextSelection selection(text);
        while (selection.caret() < text.size()) {
            selection.moveForward(Unit::Character, No);
            stops.append(selection.caret());
        }
        EXPECT_EQ(stops.mid(1), characters);
        for (qsizetype place = 0; place <= text.size(); ++place) {
            selection.moveTo(place, No);
            EXPECT_TRUE(stops.contains(selection.caret())) << place;
            EXPECT_LE(selection.caret(), place);
        }
        while (selection.caret() > 0) {
            EXPECT_EQ(selection.caret(), stops.takeLast());
            selection.moveBack(Unit::Character, No);
        }
        QList<qsizetype> ends;
        while (selection.caret() < text.size()) {
            selection.moveForward(Unit::Word, No);
            ends.append(selection.caret());
        }
        EXPECT_EQ(ends, wordEnds);
    }
}

TEST(KRTextSelectionTests, SelectsWordsAndEverything)
{
    KRTextSelection selection(u"one, שלום 👩‍👩‍👧 @me"_s);
    for (const auto& [place, word] : { std::pair(0, u"one"_s),
             std::pair(2, u"one"_s),
             std::pair(6, u"שלום"_s),
             std::pair(13, u"👩‍👩‍👧"_s),
             std::pair(21, u"me"_s),
             std::pair(500, u"me"_s),
             std::pair(-3, u"one"_s) }) {
        selection.selectWordAt(place);
        EXPECT_EQ(selection.selectedText(), word) << place;
    }
    selection.moveBack(Unit::All, Yes);
    EXPECT_EQ(selection.range().location, 0);
    selection.selectAll();
    EXPECT_EQ(selection.range().length, 22);
    selection.moveBack(Unit::Character, No);
    EXPECT_EQ(selection.range(), KRRange()) << "a selection is let go at the side the key points to";
    KRTextSelection none;
    none.selectWordAt(4);
    none.moveForward(Unit::Word, Yes);
    EXPECT_EQ(none.range(), KRRange());
}

} // namespace

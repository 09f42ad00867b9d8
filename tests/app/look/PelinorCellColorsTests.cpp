#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorContrast.h"
#include "text/render/KRColorConversion.h"

#include <QPalette>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

// WCAG 2.1, relative luminance and contrast ratio.
double luminance(const QColor& color)
{
    const auto linear = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const std::pair<double, double> values = std::minmax({ luminance(one), luminance(other) });
    return (values.second + 0.05) / (values.first + 0.05);
}

QList<QColor> spanColors(const KRActiveTextColors& colors)
{
    return { KRQColor(colors.links),
        KRQColor(colors.usernames),
        KRQColor(colors.stockSymbols),
        KRQColor(colors.hashtags) };
}

TEST(PelinorCellColorsTests, TextCanBeReadOnEveryBackground)
{
    for (const bool isRaised : { false, true }) {
        PelinorContrast::setRaised(isRaised);
        for (const QColor& ink : { QColor(Qt::black), QColor(Qt::white) }) {
            QPalette palette;
            palette.setColor(QPalette::WindowText, ink);
            const PelinorCellColors& colors = PelinorCellColors::forPalette(palette);
            EXPECT_GT(contrast(colors.background, ink), 7) << "the scheme is the desktop's";
            const QList<QColor> plain { colors.name,
                colors.text,
                colors.secondaryText,
                colors.selectionMark,
                colors.error };
            const QList<QColor> dimmed = QList { colors.dimmedText } + spanColors(colors.dimmedSpans);
            QList<QColor> spans = spanColors(colors.spans);
            // The grey of hashtags on white is given.
            if (ink == Qt::black && !isRaised)
                spans.removeLast();
            const struct {
                QColor background;
                QList<QColor> texts;
            } cases[] = {
                { colors.background, plain + dimmed + spans },
                { colors.ownBackground, plain + dimmed + spans },
                { colors.selectedBackground, plain + spanColors(colors.selectedSpans) },
            };
            for (const auto& test : cases) {
                for (const QColor& text : test.texts)
                    EXPECT_GE(contrast(text, test.background), isRaised ? 7 : 4.5)
                        << text.name().toStdString() << " on " << test.background.name().toStdString();
            }
        }
    }
    PelinorContrast::setRaised(false);
}

} // namespace

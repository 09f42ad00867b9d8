#include "app/PelinorSeenPicture.h"
#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorContrast.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "app/look/PelinorImages.h"
#include "app/look/PelinorProfileImage.h"
#include "app/look/PelinorWindowColors.h"
#include "foundation/KRUserDefaults.h"
#include "text/render/KRColorConversion.h"

#include <QPainter>
#include <QPalette>
#include <QTemporaryDir>

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

TEST(PelinorDisplayPreferencesTests, AnythingButNothingDims)
{
    const QTemporaryDir directory;
    KRUserDefaults defaults(directory.filePath(QStringLiteral("defaults.ini")));
    for (const int value : { 0, 1, 2 }) {
        defaults.setInteger("DimPreviouslySelectedTweets", value);
        EXPECT_EQ(PelinorDisplayPreferences::fromDefaults(defaults).dimPreviouslySelectedTweets, value != 0);
    }
}

// All colours of the four schemes, with what is drawn in them.
TEST(PelinorCellColorsTests, TheSchemesAreThoseThatWereSeen)
{
    constexpr int Side = 8;
    constexpr int RowHeight = 64;
    QImage sheet(320, 4 * RowHeight, QImage::Format_RGB32);
    sheet.fill(Qt::gray);
    QPainter painter(&sheet);
    for (const bool isRaised : { false, true }) {
        PelinorContrast::setRaised(isRaised);
        for (const QColor& ink : { QColor(Qt::black), QColor(127, 127, 127), QColor(Qt::white) }) {
            QPalette palette;
            palette.setColor(QPalette::WindowText, ink);
            const PelinorCellColors& cell = PelinorCellColors::forPalette(palette);
            const PelinorWindowColors& window = PelinorWindowColors::forPalette(palette);
            if (ink == QColor(127, 127, 127)) {
                EXPECT_GT(cell.background.lightness(), 127) << "dark ink is for a light desktop";
                continue;
            }
            const auto* const cellColors = reinterpret_cast<const QColor*>(&cell);
            const auto* const windowColors = reinterpret_cast<const QColor*>(&window);
            const QList<QColor> all
                = QList<QColor>(cellColors, cellColors + offsetof(PelinorCellColors, spans) / sizeof(QColor))
                + QList<QColor>(windowColors, windowColors + sizeof(window) / sizeof(QColor))
                + spanColors(cell.spans) + spanColors(cell.selectedSpans) + spanColors(cell.dimmedSpans);
            for (int at = 0; at < all.size(); ++at)
                painter.fillRect(at * Side, 0, Side, Side, all.at(at));
            PelinorProfileImage::draw(painter, QRectF(0, 10, 52, 52), nullptr, cell);
            const QIcon icon = PelinorImages::icon(QStringLiteral("Warning"), window.stripError);
            painter.fillRect(60, 10, 250, 52, cell.background);
            icon.paint(&painter, 64, 20, 32, 32);
            icon.paint(&painter, 104, 20, 32, 32, Qt::AlignCenter, QIcon::Disabled);
            // Whoever draws next finds the painter as it was.
            painter.fillRect(QRectF(144.5, 20.5, 32, 32), window.statusItem);
            painter.translate(0, RowHeight);
        }
    }
    PelinorContrast::setRaised(false);
    painter.end();
    expectAsSeen(sheet, QStringLiteral("schemes"), 0);
}

} // namespace

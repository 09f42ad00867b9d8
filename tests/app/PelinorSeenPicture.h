#pragma once

#include <QDir>
#include <QImage>

#include <gtest/gtest.h>

/// Holds what is drawn against the picture that somebody has looked at. After a change of what is drawn, look at
/// the new one, whose place the failure tells, and keep it. Decoders and blending may differ by a little.
inline void expectAsSeen(const QImage& drawn, const QString& name, int tolerance = 6)
{
    const QImage seen(QStringLiteral(PELINOR_TEST_DATA "/app/%1.png").arg(name));
    ASSERT_EQ(drawn.devicePixelRatio(), 1);
    int differing = drawn.size() == seen.size() ? 0 : drawn.width() * drawn.height();
    for (int at = 0; differing == 0 && at < drawn.width() * drawn.height(); ++at) {
        const QPoint pixel(at % drawn.width(), at / drawn.width());
        const QColor one = drawn.pixelColor(pixel);
        const QColor other = seen.pixelColor(pixel);
        differing += std::abs(one.red() - other.red()) + std::abs(one.green() - other.green())
                + std::abs(one.blue() - other.blue())
            > tolerance;
    }
    const QString kept = QDir::tempPath() + QStringLiteral("/pelinor-%1.png").arg(name);
    EXPECT_EQ(differing, 0) << "what is drawn now: " << kept.toStdString() << drawn.save(kept);
}

#pragma once

#include "text/render/KRAttributedString.h"

#include <QCache>

#include <functional>

/// Remembers the heights of texts by text, font and width, so that a list that is laid out again measures
/// only what is new. Main thread.
class KRTextHeightCache {
public:
    /// Fifteen full lists at one width, and some to spare.
    static constexpr qsizetype Capacity = 8192;

    /// The remembered height, or that of the styled text, which is asked for only when nothing is remembered.
    int height(const QString& text,
        const QFont& font,
        int width,
        const std::function<KRAttributedString()>& attributedString);

    /// How many texts have been measured so far.
    int measuredCount() const { return m_measuredCount; }

private:
    struct Key {
        QString text;
        QFont font;
        int width = 0;

        bool operator==(const Key& other) const
        {
            return width == other.width && text == other.text && font == other.font;
        }
        friend size_t qHash(const Key& key, size_t seed = 0)
        {
            return qHashMulti(seed, key.text, key.font.pixelSize(), key.width);
        }
    };

    QCache<Key, int> m_heights { Capacity };
    int m_measuredCount = 0;
};

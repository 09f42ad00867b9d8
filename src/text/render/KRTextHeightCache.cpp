#include "text/render/KRTextHeightCache.h"

#include "text/render/KRActiveTextRenderer.h"

int KRTextHeightCache::height(const QString& text,
    const QFont& font,
    int width,
    const std::function<KRAttributedString()>& attributedString)
{
    const Key key { text, font, width };
    if (const int* height = m_heights.object(key))
        return *height;
    const int height = KRActiveTextRenderer::heightOfAttributedString(attributedString(), width);
    ++m_measuredCount;
    m_heights.insert(key, new int(height));
    return height;
}

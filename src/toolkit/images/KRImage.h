#pragma once

#include <QPixmap>
#include <QSizeF>
#include <QString>

#include <functional>
#include <memory>

class QPainter;

/// A picture described by how it is drawn, so that it is sharp at every scale factor. It may carry caps: the
/// parts at its edges that keep their size when it is drawn into a larger rectangle. A value; copies share
/// the description. Main thread.
class KRImage {
public:
    /// Draws the picture at its natural size, its top left at the origin.
    using DrawingFunction = std::function<void(QPainter& painter)>;
    /// Whether y grows downward where the picture is drawn, as it does in every view. Elsewhere a picture
    /// drawn as flipped stands on its head.
    enum class Flipped { No, Yes };

    KRImage() = default;
    /// A picture of the program's resources, "FOLDER/NAME.svg". One that is not there is logged and draws
    /// nothing.
    static KRImage imageNamed(const QString& name);
    static KRImage imageWithDrawing(QSizeF size, DrawingFunction draw);
    static KRImage imageWithPixmap(const QPixmap& pixmap);

    [[nodiscard]] bool isNull() const { return !m_source; }
    /// The natural size, in points.
    [[nodiscard]] QSizeF size() const;

    /// The same picture with caps: the given width at the left and, mirrored, at the right, the given height
    /// at the top and the bottom. What is between is stretched.
    [[nodiscard]] KRImage stretchableImageWithLeftCapWidth(int leftCapWidth, int topCapHeight) const;

    /// Draws the picture into the rectangle. Caps that find no room are cut to half of what there is.
    void drawInContext(QPainter& painter, const QRectF& rect, Flipped flipped) const;

private:
    struct Source;
    struct Rendering;

    void _drawOnWholePixels(QPainter& painter, const QRectF& rect, qreal scale) const;
    static QSize _pixelSize(QSizeF size);
    [[nodiscard]] QPixmap _rendering(QSize pixels, qreal scale) const;

    std::shared_ptr<const Source> m_source;
    // The last rendering: a list draws the same few pictures at the same size over and over.
    std::shared_ptr<Rendering> m_rendering;
    int m_leftCapWidth = 0;
    int m_topCapHeight = 0;
};

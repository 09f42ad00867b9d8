#include "app/window/PelinorErrorStrip.h"

#include "app/look/PelinorCellColors.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

namespace {

// Enough for what a service says, and no wall of it.
constexpr qsizetype LongestText = 300;

QIcon crossIcon(const QColor& color)
{
    constexpr int Side = 16;
    constexpr int Scale = 2;
    QPixmap pixmap(Side * Scale, Side * Scale);
    pixmap.setDevicePixelRatio(Scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(4.5, 4.5), QPointF(11.5, 11.5));
    painter.drawLine(QPointF(11.5, 4.5), QPointF(4.5, 11.5));
    return pixmap;
}

} // namespace

PelinorErrorStrip::PelinorErrorStrip(QWidget* parent)
    : QWidget(parent)
    , m_label(new QLabel)
    , m_dismissButton(new QToolButton)
{
    // What is said comes from the network.
    m_label->setTextFormat(Qt::PlainText);
    m_label->setWordWrap(true);
    m_label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_dismissButton->setAutoRaise(true);
    m_dismissButton->setAccessibleName(tr("Dismiss"));
    m_dismissButton->setToolTip(tr("Dismiss"));
    connect(m_dismissButton, &QToolButton::clicked, this, &PelinorErrorStrip::dismissed);

    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(14, 7, 8, 8);
    layout->addWidget(m_label, 1);
    layout->addWidget(m_dismissButton, 0, Qt::AlignTop);
    _updateColors();
    hide();
}

PelinorErrorStrip::~PelinorErrorStrip() = default;

QString PelinorErrorStrip::text() const
{
    return m_label->text();
}

void PelinorErrorStrip::setText(const QString& text)
{
    QString shown = text.simplified();
    if (shown.size() > LongestText)
        shown = shown.left(LongestText - 1) + u'…';
    m_label->setText(shown);
    setAccessibleName(shown);
    setVisible(!shown.isEmpty());
}

void PelinorErrorStrip::_updateColors()
{
    const QColor color = PelinorCellColors::forPalette(palette()).error;
    QPalette colors = m_label->palette();
    colors.setColor(QPalette::WindowText, color);
    m_label->setPalette(colors);
    m_dismissButton->setIcon(crossIcon(color));
}

void PelinorErrorStrip::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // Another colour scheme.
    if (event->type() == QEvent::PaletteChange)
        _updateColors();
}

void PelinorErrorStrip::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    QColor tint = colors.error;
    tint.setAlphaF(0.12F);
    painter.fillRect(rect(), colors.background);
    painter.fillRect(rect(), tint);
    const qreal hairline = 1 / devicePixelRatioF();
    painter.fillRect(QRectF(0, height() - hairline, width(), hairline), colors.separator);
}

#include "GallerySidebar.h"

#include "GalleryLook.h"
#include "toolkit/images/KRGradient.h"

#include <QButtonGroup>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int ButtonHeight = 36;
constexpr int Margin = 10;

class PageButton final : public QAbstractButton {
public:
    PageButton(const QString& title, QWidget* parent)
        : QAbstractButton(parent)
    {
        setText(title);
        setCheckable(true);
        setFixedHeight(ButtonHeight);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF area = QRectF(rect()).adjusted(1, 2, -1, -2);
        if (isChecked() || isDown()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(255, 255, 255, isChecked() ? 46 : 24));
            painter.drawRoundedRect(area, 6, 6);
        }
        if (hasFocus()) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(QColor(0x8F, 0xC4, 0xF6), 2));
            painter.drawRoundedRect(area, 6, 6);
        }
        painter.setPen(QColor(255, 255, 255, isChecked() ? 255 : 205));
        painter.setFont(GalleryLook::font(10, isChecked()));
        painter.drawText(rect().adjusted(14, 0, -14, 0), Qt::AlignVCenter | Qt::AlignLeading, text());
    }
};

} // namespace

GallerySidebar::GallerySidebar(const QStringList& titles, QWidget* parent)
    : QWidget(parent)
{
    setFixedWidth(Width);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(2);
    auto* const group = new QButtonGroup(this);
    for (const QString& title : titles) {
        auto* const button = new PageButton(title, this);
        group->addButton(button, int(m_buttons.size()));
        m_buttons.append(button);
        layout->addWidget(button);
    }
    layout->addStretch();
    m_buttons.first()->setChecked(true);
    connect(group, &QButtonGroup::idToggled, this, [this](int page, bool isChosen) {
        if (isChosen && page != m_currentPage) {
            m_currentPage = page;
            Q_EMIT pageChosen(page);
        }
    });
}

void GallerySidebar::setCurrentPage(int page)
{
    m_buttons.at(page)->setChecked(true);
}

void GallerySidebar::paintEvent(QPaintEvent* /*event*/)
{
    static const KRGradient background(KRColor::rgba(0.22F, 0.25F, 0.29F, 1),
        KRColor::rgba(0.15F, 0.17F, 0.2F, 1));
    static const KRGradient shade(KRColor::rgba(0, 0, 0, 0), KRColor::rgba(0, 0, 0, 0.28F));
    QPainter painter(this);
    background.drawInRect(painter, rect(), KRGradient::Direction::Down);
    if (!isRightToLeft())
        shade.drawInRect(painter, QRectF(width() - 6, 0, 6, height()), KRGradient::Direction::Right);
}

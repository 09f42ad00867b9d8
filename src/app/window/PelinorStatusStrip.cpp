#include "app/window/PelinorStatusStrip.h"

#include "app/look/PelinorAlert.h"
#include "app/look/PelinorImages.h"
#include "app/look/PelinorWindowColors.h"
#include "app/window/PelinorProgressIndicator.h"
#include "text/render/KRActiveTextStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

// Enough for what a service says, and no wall of it.
constexpr qsizetype LongestText = 300;
constexpr int PointSize = 10;
constexpr int IconSide = 14;

QToolButton* makeButton(const QString& name, QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    button->setObjectName(name);
    button->setAutoRaise(true);
    button->setIconSize({ IconSide, IconSide });
    button->setFixedHeight(PelinorStatusStrip::Height - 2);
    button->hide();
    return button;
}

} // namespace

PelinorStatusStrip::PelinorStatusStrip(QWidget* parent)
    : QWidget(parent)
    , m_progressIndicator(new PelinorProgressIndicator(this))
    , m_errorButton(makeButton(u"errorButton"_s, this))
    , m_errorField(new QLabel(this))
    , m_noticeButton(makeButton(u"noticeButton"_s, this))
{
    m_errorButton->setAccessibleName(tr("Show the whole error"));
    connect(m_errorButton, &QToolButton::clicked, this, [this] {
        PelinorShowAlert(QMessageBox::Warning, tr("Error"), m_error, window());
    });
    // What is said comes from the network.
    m_errorField->setObjectName(u"errorField"_s);
    m_errorField->setTextFormat(Qt::PlainText);
    m_errorField->setMinimumWidth(0);
    m_errorField->installEventFilter(this);
    m_noticeButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(m_noticeButton, &QToolButton::clicked, this, [this] {
        const QString text = m_notice;
        const QString title = m_noticeButton->text();
        setNotice({}, {});
        PelinorShowAlert(QMessageBox::Information, title, text, window());
    });

    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 1, 8, 1);
    layout->setSpacing(6);
    layout->addWidget(m_progressIndicator);
    layout->addWidget(m_errorButton);
    layout->addWidget(m_errorField, 1);
    layout->addWidget(m_noticeButton);
    _updateColors();
}

PelinorStatusStrip::~PelinorStatusStrip() = default;

void PelinorStatusStrip::setError(const QString& text)
{
    m_error = text.simplified();
    if (m_error.size() > LongestText)
        m_error = m_error.left(LongestText - 1) + u'…';
    m_errorButton->setVisible(!m_error.isEmpty());
    m_errorField->setAccessibleName(m_error);
    m_errorField->setToolTip(m_error.toHtmlEscaped());
    _elide();
}

void PelinorStatusStrip::setNotice(const QString& title, const QString& text)
{
    m_notice = text;
    m_noticeButton->setText(title);
    m_noticeButton->setToolTip(text.toHtmlEscaped());
    m_noticeButton->setVisible(!text.isEmpty());
}

void PelinorStatusStrip::_elide()
{
    m_errorField->setText(
        m_errorField->fontMetrics().elidedText(m_error, Qt::ElideRight, m_errorField->width()));
}

void PelinorStatusStrip::showEvent(QShowEvent* event)
{
    // Not before: loading the fonts takes longer than making the window.
    const QFont font = KRMessageFont(PointSize);
    for (QWidget* const text : { static_cast<QWidget*>(m_errorField),
             static_cast<QWidget*>(m_errorButton),
             static_cast<QWidget*>(m_noticeButton) })
        text->setFont(font);
    QWidget::showEvent(event);
}

bool PelinorStatusStrip::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        _elide();
    return QWidget::eventFilter(watched, event);
}

void PelinorStatusStrip::_updateColors()
{
    const PelinorWindowColors& colors = PelinorWindowColors::forPalette(palette());
    QPalette field = m_errorField->palette();
    field.setColor(QPalette::WindowText, colors.stripError);
    m_errorField->setPalette(field);
    QPalette notice = m_noticeButton->palette();
    notice.setColor(QPalette::ButtonText, colors.stripText);
    m_noticeButton->setPalette(notice);
    m_errorButton->setIcon(PelinorImages::icon(u"Warning"_s, colors.stripError));
    m_noticeButton->setIcon(PelinorImages::icon(u"Notice"_s, colors.stripText));
}

void PelinorStatusStrip::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // Another colour scheme.
    if (event->type() == QEvent::PaletteChange)
        _updateColors();
}

void PelinorStatusStrip::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const PelinorWindowColors& colors = PelinorWindowColors::forPalette(palette());
    painter.fillRect(rect(), colors.strip);
    painter.fillRect(QRectF(0, 0, width(), 1 / devicePixelRatioF()), colors.stripLine);
}

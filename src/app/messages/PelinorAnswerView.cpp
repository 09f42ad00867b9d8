#include "app/messages/PelinorAnswerView.h"

#include "app/look/PelinorCellColors.h"
#include "compose/PelinorDraft.h"
#include "compose/PelinorLinkShortening.h"
#include "text/render/KRActiveTextStyle.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QShortcut>
#include <QTextBlock>
#include <QTextDocument>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int TextSize = 11;
constexpr int CounterSize = 9;
constexpr int MostLines = 6;
// Where it says nothing new, how much room is left is not shown.
constexpr qsizetype CountFrom = 40;

} // namespace

PelinorAnswerView::PelinorAnswerView(QWidget* parent)
    : QWidget(parent)
    , m_editor(new QPlainTextEdit(this))
    , m_counter(new QLabel(this))
    , m_sendButton(new QToolButton(this))
{
    m_editor->setObjectName(u"answerField"_s);
    m_editor->setAccessibleName(tr("Answer"));
    m_editor->setFont(KRMessageFont(TextSize));
    m_editor->setTabChangesFocus(true);
    m_editor->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_editor->setToolTip(tr("Enter sends, Shift+Enter begins a line"));
    m_editor->installEventFilter(this);
    m_counter->setObjectName(u"answerCounter"_s);
    m_counter->setFont(KRMessageFont(CounterSize));
    m_counter->setTextFormat(Qt::PlainText);
    m_counter->setAlignment(Qt::AlignCenter);
    m_sendButton->setObjectName(u"sendButton"_s);
    m_sendButton->setText(tr("Send"));
    m_sendButton->setAutoRaise(true);

    auto* const side = new QVBoxLayout;
    side->setSpacing(2);
    side->addStretch();
    side->addWidget(m_counter);
    side->addWidget(m_sendButton);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(8);
    layout->addWidget(m_editor, 1);
    layout->addLayout(side);
    setFocusProxy(m_editor);

    m_shortening = std::make_shared<PelinorLinkShortening>(PelinorLinkShortening::Editor {
        [this] { return text(); },
        [this](KRRange range, const QString& replacement) {
            QTextCursor cursor(m_editor->document());
            cursor.setPosition(int(range.location));
            cursor.setPosition(int(range.end()), QTextCursor::KeepAnchor);
            cursor.insertText(replacement);
        },
        [](bool) {},
    });
    auto* const shorten = new QShortcut(QKeySequence(u"Ctrl+Shift+L"_s), m_editor);
    shorten->setContext(Qt::WidgetShortcut);
    connect(shorten, &QShortcut::activated, this, [this] { shortenURLs(); });
    connect(m_editor, &QPlainTextEdit::textChanged, this, [this] { _textDidChange(); });
    connect(m_sendButton, &QToolButton::clicked, this, [this] { _send(); });
    _update();
}

PelinorAnswerView::~PelinorAnswerView() = default;

QString PelinorAnswerView::text() const
{
    return m_editor->toPlainText();
}

void PelinorAnswerView::setText(const QString& text)
{
    if (text == this->text())
        return;
    const QSignalBlocker silence(this);
    m_editor->setPlainText(text);
    m_editor->moveCursor(QTextCursor::End);
}

void PelinorAnswerView::insertText(const QString& text)
{
    m_editor->insertPlainText(text);
}

void PelinorAnswerView::setLongestText(qsizetype longest)
{
    m_longest = longest;
    _update();
}

void PelinorAnswerView::setPlaceholderText(const QString& text)
{
    m_editor->setPlaceholderText(text);
}

void PelinorAnswerView::shortenURLs()
{
    if (m_context)
        m_shortening->shortenURLs(m_context());
}

void PelinorAnswerView::_textDidChange()
{
    _update();
    Q_EMIT textChanged();
}

bool PelinorAnswerView::_isSendable() const
{
    const QString text = this->text();
    return !text.trimmed().isEmpty() && (m_longest <= 0 || text.size() <= m_longest);
}

void PelinorAnswerView::_send()
{
    if (_isSendable())
        Q_EMIT sendRequested();
}

void PelinorAnswerView::_update()
{
    const qsizetype remaining = m_longest - text().size();
    const bool isOver = m_longest > 0 && remaining < 0;
    m_counter->setText(QLocale().toString(remaining));
    m_counter->setVisible(m_longest > 0 && remaining < CountFrom);
    m_counter->setAccessibleName(tr("Characters left: %1").arg(remaining));
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    QPalette counter = m_counter->palette();
    counter.setColor(QPalette::WindowText, isOver ? colors.error : colors.secondaryText);
    if (counter != m_counter->palette())
        m_counter->setPalette(counter);
    m_sendButton->setEnabled(_isSendable());
    m_sendButton->setToolTip(isOver ? tr("The message is too long") : QString());

    // Lines as they are wrapped.
    const int lines = std::clamp(int(m_editor->document()->size().height()), 1, MostLines);
    const int frame = m_editor->height() - m_editor->viewport()->height();
    const int margins = 2 * int(m_editor->document()->documentMargin());
    m_editor->setFixedHeight(lines * m_editor->fontMetrics().lineSpacing() + margins + std::max(frame, 2));
    m_editor->setVerticalScrollBarPolicy(lines < MostLines ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
}

bool PelinorAnswerView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_editor && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool isEnter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
        if (isEnter && !key.modifiers().testFlag(Qt::ShiftModifier)) {
            // Held down it would send what is written next.
            if (!key.isAutoRepeat())
                _send();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void PelinorAnswerView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    _update();
}

void PelinorAnswerView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        _update();
}

void PelinorAnswerView::paintEvent(QPaintEvent* /*event*/)
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colors.background);
    painter.fillRect(QRectF(0, 0, width(), 1 / devicePixelRatioF()), colors.separator);
}

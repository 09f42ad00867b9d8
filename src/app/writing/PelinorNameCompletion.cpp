#include "app/writing/PelinorNameCompletion.h"

#include "app/writing/PelinorTextView.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int MostNames = 6;

} // namespace

PelinorNameCompletion::PelinorNameCompletion(PelinorTextView& view, const Twitter& twitter)
    : QListWidget(view.window())
    , m_view(view)
    , m_names(twitter)
{
    setObjectName(u"nameCompletion"_s);
    setAccessibleName(tr("Names"));
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    hide();
    connect(this, &QListWidget::itemClicked, this, [this] { _take(); });
    connect(&view, &QTextEdit::textChanged, this, [this] {
        hide();
        m_names.startCompletionTimer([this] { _complete(); });
    });
    connect(&view, &QTextEdit::cursorPositionChanged, this, &QWidget::hide);
}

PelinorNameCompletion::~PelinorNameCompletion()
{
    m_names.stopCompletionTimer();
}

void PelinorNameCompletion::_complete()
{
    const QString text = m_view.document()->toRawText();
    const auto typed = UsernameAutocompletionDelegate::nameBefore(text, m_view.textCursor().position());
    if (!typed || m_view.isReadOnly() || !m_view.hasFocus())
        return;
    m_typed = *typed;
    // Others may have become known since.
    m_names.updateUsernames();
    const QStringList names = m_names.completions(KRSubstring(text, m_typed), MostNames);
    clear();
    addItems(names);
    setCurrentRow(-1);
    if (names.isEmpty())
        return;
    resize(sizeHintForColumn(0) + 2 * frameWidth() + 8,
        sizeHintForRow(0) * int(names.size()) + 2 * frameWidth());
    const QRect cursor = m_view.cursorRect();
    QPoint place = m_view.viewport()->mapTo(parentWidget(), cursor.bottomLeft());
    if (place.y() + height() > parentWidget()->height())
        place.setY(std::max(0, place.y() - cursor.height() - height()));
    place.setX(std::clamp(place.x(), 0, std::max(0, parentWidget()->width() - width())));
    move(place);
    show();
    raise();
}

bool PelinorNameCompletion::handleKey(QKeyEvent& event)
{
    if (!isVisible() || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_Down:
        _move(1);
        return true;
    case Qt::Key_Up:
        _move(-1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        if (currentRow() < 0)
            return false;
        _take();
        return true;
    case Qt::Key_Escape:
        hide();
        return true;
    default:
        return false;
    }
}

void PelinorNameCompletion::_move(int by)
{
    setCurrentRow(currentRow() < 0 ? (by > 0 ? 0 : count() - 1) : (currentRow() + by + count()) % count());
}

void PelinorNameCompletion::_take()
{
    const QListWidgetItem* const chosen = currentItem();
    if (chosen)
        m_view.replaceRange(m_typed, chosen->text() + u' ');
    hide();
    m_names.stopCompletionTimer();
}

#include "toolkit/KRActiveTextAccessibility.h"

#include "toolkit/KRAccessiblePart.h"
#include "toolkit/KRActiveTextTracker.h"
#include "toolkit/KRActiveTextView.h"

#include <QAccessibleWidget>
#include <QPointer>

namespace {

// One span. It knows its number alone and looks everything else up, so that a new text leaves nothing stale.
class SpanInterface final : public KRAccessiblePart {
public:
    SpanInterface(KRActiveTextTracker& tracker, QWidget& widget, int number)
        : m_tracker(&tracker)
        , m_widget(&widget)
        , m_number(number)
    {
    }

    int number() const { return m_number; }

    bool isValid() const override { return m_tracker && m_widget && m_number < m_tracker->spanCount(); }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_widget); }
    QAccessible::Role role() const override { return QAccessible::Link; }

    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect rect = m_tracker->spanRect(m_number);
        return { m_widget->mapToGlobal(rect.topLeft()), rect.size() };
    }

    QStringList actionNames() const override { return { pressAction(), setFocusAction() }; }
    void doAction(const QString& name) override
    {
        if (name == setFocusAction() && isValid())
            m_tracker->focusSpan(m_number);
        else
            KRAccessiblePart::doAction(name);
    }

private:
    QString name() const override { return m_tracker->spanText(m_number); }
    void describe(QAccessible::State& state) const override
    {
        state.linked = true;
        state.focusable = true;
        state.focused = m_widget->hasFocus() && m_tracker->focusedSpan() == m_number;
        state.invisible = !m_widget->isVisible();
    }
    void press() override { m_tracker->clickSpan(m_number); }

    QPointer<KRActiveTextTracker> m_tracker;
    QPointer<QWidget> m_widget;
    int m_number;
};

class TextViewInterface final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit TextViewInterface(KRActiveTextView& view)
        : QAccessibleWidget(&view, QAccessible::StaticText)
        , m_view(view)
        , m_spans(view)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString text = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && text.isEmpty() ? m_view.text() : text;
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectableText = true;
        state.readOnly = true;
        state.multiLine = true;
        return state;
    }
    int childCount() const override { return m_spans.count(); }
    QAccessibleInterface* child(int index) const override { return m_spans.at(index); }
    int indexOfChild(const QAccessibleInterface* child) const override { return m_spans.indexOf(child); }
    QAccessibleInterface* childAt(int x, int y) const override { return m_spans.under({ x, y }); }
    QAccessibleInterface* focusChild() const override
    {
        return m_spans.focused() ? m_spans.focused() : QAccessibleWidget::focusChild();
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }

    void selection(int index, int* start, int* end) const override
    {
        const KRRange range = index == 0 ? m_view.selection().range() : KRRange();
        *start = int(range.location);
        *end = int(range.end());
    }
    int selectionCount() const override { return m_view.selection().range().length > 0 ? 1 : 0; }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int /*index*/) override { setCursorPosition(cursorPosition()); }
    void setSelection(int /*index*/, int start, int end) override
    {
        KRTextSelection selection = m_view.selection();
        selection.moveTo(start, KRTextSelection::Extend::No);
        selection.moveTo(end, KRTextSelection::Extend::Yes);
        m_view.setSelection(selection);
    }
    int cursorPosition() const override { return int(m_view.selection().caret()); }
    void setCursorPosition(int position) override { setSelection(0, position, position); }
    QString text(int start, int end) const override
    {
        return m_view.text().mid(start, end < 0 ? -1 : std::max(0, end - start));
    }
    int characterCount() const override { return int(m_view.text().size()); }
    QRect characterRect(int offset) const override
    {
        const QList<QRectF> rects = m_view.renderer().rectArrayForRange({ offset, 1 });
        const QRect rect = rects.isEmpty() ? QRect() : rects.first().toAlignedRect();
        return { m_view.mapToGlobal(rect.topLeft()), rect.size() };
    }
    int offsetAtPoint(const QPoint& point) const override
    {
        return int(m_view.renderer().characterIndexAtPoint(m_view.mapFromGlobal(point)));
    }
    void scrollToSubstring(int /*start*/, int /*end*/) override { }
    QString attributes(int offset, int* start, int* end) const override
    {
        *start = offset;
        *end = offset + 1;
        return {};
    }

private:
    KRActiveTextView& m_view;
    KRAccessibleSpans m_spans;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object)
{
    auto* const view = qobject_cast<KRActiveTextView*>(object);
    return view ? new TextViewInterface(*view) : nullptr;
}

} // namespace

KRAccessibleSpans::KRAccessibleSpans(QWidget& widget)
    : m_widget(widget)
{
}

KRAccessibleSpans::~KRAccessibleSpans()
{
    for (const QAccessible::Id id : std::as_const(m_interfaces))
        QAccessible::deleteAccessibleInterface(id);
}

KRActiveTextTracker* KRAccessibleSpans::_tracker() const
{
    return m_widget.findChild<KRActiveTextTracker*>({}, Qt::FindDirectChildrenOnly);
}

int KRAccessibleSpans::count() const
{
    const KRActiveTextTracker* const tracker = _tracker();
    return tracker ? int(tracker->spanCount()) : 0;
}

QAccessibleInterface* KRAccessibleSpans::at(int number) const
{
    if (number < 0 || number >= count())
        return nullptr;
    const auto known = m_interfaces.constFind(number);
    if (known != m_interfaces.cend())
        return QAccessible::accessibleInterface(*known);
    auto* const interface = new SpanInterface(*_tracker(), m_widget, number);
    m_interfaces.insert(number, QAccessible::registerAccessibleInterface(interface));
    return interface;
}

int KRAccessibleSpans::indexOf(const QAccessibleInterface* interface) const
{
    const auto* const span = dynamic_cast<const SpanInterface*>(interface);
    return span && span->number() < count() && at(span->number()) == span ? span->number() : -1;
}

QAccessibleInterface* KRAccessibleSpans::under(QPoint point) const
{
    const KRActiveTextTracker* const tracker = _tracker();
    const auto span = tracker ? tracker->spanAt(m_widget.mapFromGlobal(point)) : std::nullopt;
    return span ? at(int(*span)) : nullptr;
}

QAccessibleInterface* KRAccessibleSpans::focused() const
{
    const KRActiveTextTracker* const tracker = m_widget.hasFocus() ? _tracker() : nullptr;
    const auto span = tracker ? tracker->focusedSpan() : std::nullopt;
    return span ? at(int(*span)) : nullptr;
}

void KRInstallActiveTextAccessibility()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    static_cast<void>(isInstalled);
}

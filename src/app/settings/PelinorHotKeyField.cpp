#include "app/settings/PelinorHotKeyField.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

// The base takes the first key of any kind for the beginning of another combination and forgets the one it
// has: who only presses Ctrl, for a hot key that is heard elsewhere, would have none any more.
class Recorder final : public QKeySequenceEdit {
public:
    using QKeySequenceEdit::QKeySequenceEdit;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        switch (event->key()) {
        case Qt::Key_Control:
        case Qt::Key_Shift:
        case Qt::Key_Meta:
        case Qt::Key_Alt:
        case Qt::Key_AltGr:
            break;
        default:
            QKeySequenceEdit::keyPressEvent(event);
        }
    }
};

} // namespace

PelinorHotKeyField::PelinorHotKeyField(PelinorHotKeys& hotKeys, PelinorHotKeys::Type type, QWidget* parent)
    : QWidget(parent)
    , m_hotKeys(hotKeys)
    , m_type(type)
    , m_recorder(new Recorder(this))
    , m_trouble(new QLabel(this))
{
    m_recorder->setObjectName(u"recorder"_s);
    // It is the field inside that has the keyboard, and the label is not its own.
    if (auto* const field = m_recorder->findChild<QLineEdit*>())
        field->setAccessibleName(type == PelinorHotKeys::ShowHidePelinor ? tr("Key to show or hide Pelinor")
                                                                         : tr("Key for a new tweet"));
    if (const QKeyCombination key = hotKeys.hotKey(type); key.key())
        m_recorder->setKeySequence(key);
    connect(m_recorder, &QKeySequenceEdit::keySequenceChanged, this, &PelinorHotKeyField::_takeKey);
    auto* const clear = new QToolButton(this);
    clear->setText(tr("Clear"));
    connect(clear, &QToolButton::clicked, m_recorder, &QKeySequenceEdit::clear);
    m_trouble->setTextFormat(Qt::PlainText);
    m_trouble->setWordWrap(true);
    m_trouble->setObjectName(u"hotKeyTrouble"_s);
    m_trouble->hide();
    auto* const row = new QHBoxLayout;
    row->addWidget(m_recorder, 1);
    row->addWidget(clear);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(row);
    layout->addWidget(m_trouble);
    setFocusProxy(m_recorder);
}

PelinorHotKeyField::~PelinorHotKeyField() = default;

void PelinorHotKeyField::_takeKey()
{
    const QKeySequence keys = m_recorder->keySequence();
    // One hot key is one combination; the recorder would wait for more.
    if (keys.count() > 1) {
        m_recorder->setKeySequence(keys[uint(keys.count() - 1)]);
        return;
    }
    const QKeyCombination key = keys.isEmpty() ? QKeyCombination(Qt::Key(0)) : keys[0];
    const bool isBare = key.key() && !(key.keyboardModifiers() & ~Qt::KeyboardModifiers(Qt::ShiftModifier));
    const KRResult<void> result = m_hotKeys.registerKeyCode(isBare ? 0 : int(key.key()),
        isBare ? 0 : int(key.keyboardModifiers()),
        m_type);
    const QString trouble = isBare ? tr("A hot key needs Ctrl, Alt or the Super key.")
        : result.isError()         ? result.error().description
                                   : QString();
    m_trouble->setText(trouble);
    m_trouble->setVisible(!trouble.isEmpty());
}

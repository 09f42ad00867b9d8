#include "PelinorJourney.h"
#include "app/settings/PelinorHotKeyField.h"
#include "app/settings/PelinorLoginWindowController.h"
#include "app/settings/PelinorPreferencesWindowController.h"
#include "app/window/PelinorStatusStrip.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QToolButton>

namespace {

bool isControl(const QWidget& widget)
{
    // A part of another control is that control's business.
    return !widget.objectName().startsWith(u"qt_") && !widget.parentWidget()->inherits("QAbstractScrollArea")
        && (widget.inherits("QAbstractButton") || widget.inherits("QLabel") || widget.inherits("QLineEdit")
            || widget.inherits("QComboBox") || widget.inherits("QAbstractScrollArea"))
        && !widget.parentWidget()->inherits("QComboBox")
        && !widget.parentWidget()->inherits("QKeySequenceEdit");
}

/// What one can see, hear and press in a window, a line for each control: what is so by itself is left out.
QStringList outline(QWidget& window)
{
    static const QByteArrayList properties = QByteArray(
        "objectName text checkable checked default autoDefault echoMode placeholderText editable "
        "insertPolicy textFormat wordWrap textInteractionFlags readOnly tabChangesFocus minimumWidth "
        "layoutDirection focusPolicy alignment autoRaise")
                                                 .split(' ');
    static const QStringList usual
        = u"0 false Normal AutoText LinksAccessibleByMouse LeftToRight StrongFocus "
          "WheelFocus NoFocus InsertAtBottom AlignLeading|AlignVCenter"_s.split(u' ');
    QStringList lines { (u"== "_s + window.windowTitle()).trimmed() };
    for (QWidget* const widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(&window) || !isControl(*widget))
            continue;
        QString line = QString::fromLatin1(widget->metaObject()->className()) + u" \""_s
            + QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name) + u'"';
        if (!widget->isEnabled())
            line += u" disabled"_s;
        for (const QByteArray& property : properties) {
            const QString value = widget->property(property.constData()).toString().simplified();
            if (!value.isEmpty() && !usual.contains(value))
                line += u' ' + QLatin1String(property) + u'=' + value;
        }
        if (const auto* const box = qobject_cast<QComboBox*>(widget)) {
            for (int item = 0; item < box->count(); ++item)
                line += u" [%1 %2]"_s.arg(box->itemText(item), box->itemData(item).toString());
        }
        lines.append(line);
    }
    return lines;
}

void expectThatNothingOverlaps(QWidget& window)
{
    QList<QWidget*> controls;
    for (QWidget* const widget : window.findChildren<QWidget*>()) {
        if (widget->isVisibleTo(&window) && isControl(*widget))
            controls.append(widget);
    }
    const auto place
        = [&](QWidget* widget) { return QRect(widget->mapTo(&window, QPoint()), widget->size()); };
    for (QWidget* const one : controls) {
        const std::string name = window.windowTitle().toStdString() + ": "
            + outline(*one->parentWidget()).join(u'\n').toStdString();
        EXPECT_TRUE(window.rect().contains(place(one))) << name;
        EXPECT_TRUE(qobject_cast<QLabel*>(one) || one->height() >= 14) << name;
        for (QWidget* const other : controls)
            EXPECT_TRUE(one == other || !place(one).intersects(place(other))) << name;
    }
}

} // namespace

// After a change, read the new outline, whose place the failure tells, and keep it.
TEST_F(Journey, FormsAreAsTheyWereRead)
{
    QStringList lines;
    const auto read = [&](QWidget& window) {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        expectThatNothingOverlaps(window);
        lines += outline(window);
    };
    end();
    start(Services::ToBeFound);
    read(m_delegate->loginWindowController()->window());
    signIn(u"alice"_s, u"wonderland"_s);
    end();
    start();
    QSet<QKeySequence> keys;
    for (const QAction* const menu : window().window().menuBar()->actions()) {
        for (const QAction* const item : menu->menu()->actions()) {
            lines += u"%1 %2 %3"_s.arg(menu->text(), item->text(), item->shortcut().toString()).trimmed();
            EXPECT_TRUE(item->shortcut().isEmpty() || !keys.contains(item->shortcut()))
                << lines.last().toStdString();
            keys.insert(item->shortcut());
        }
    }
    PelinorPreferencesWindowController& preferences = m_delegate->preferencesWindowController();
    preferences.showWindow();
    read(preferences.window());
    preferences.advanced();
    read(preferences.window());
    preferences.accounts();
    find<QListWidget>(preferences.window(), u"accountsTable"_s)->setCurrentRow(0);
    read(preferences.window());
    for (const QString& button : { u"accountDetailsButton"_s, u"addAccountButton"_s }) {
        find<QAbstractButton>(preferences.window(), button)->click();
        auto* const sheet = preferences.window().findChild<QDialog*>();
        ASSERT_NE(sheet, nullptr);
        EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
        read(*sheet);
        delete sheet;
    }
    window().statusStrip().setError(u"An error"_s);
    window().statusStrip().setNotice(u"A notice"_s, u"Its text"_s);
    read(window().statusStrip());
    window().goToUser();
    auto* const panel = window().window().findChild<QDialog*>();
    ASSERT_NE(panel, nullptr);
    read(*panel);
    m_twitter->removeAccount(m_twitter->accounts().first());
    auto* const noAccount = find<QWidget>(window().window(), u"noAccountView"_s);
    read(*noAccount);
    EXPECT_EQ(window().window().focusWidget(), noAccount->focusProxy());
    const QString text = lines.join(u'\n').replace(m_service.httpsHost(), u"HOST"_s) + u'\n';
    QFile file(QStringLiteral(PELINOR_TEST_DATA "/app/forms.txt"));
    const QString known = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    QFile kept(QDir::tempPath() + u"/pelinor-forms.txt"_s);
    EXPECT_TRUE(kept.open(QIODevice::WriteOnly) && kept.write(text.toUtf8()) > 0);
    EXPECT_TRUE(text == known) << "what is there now: " << kept.fileName().toStdString();
}

// Everything that has the name of a user default keeps what is chosen there.
TEST_F(Journey, ChoicesAreKept)
{
    QMainWindow& preferences = m_delegate->preferencesWindowController().window();
    const auto kept = [&](const QWidget& widget) { return m_defaults.stringForKey(widget.objectName()); };
    for (QComboBox* const box : preferences.findChildren<QComboBox*>()) {
        for (int item = box->count() - 1; item >= 0; --item) {
            box->setCurrentIndex(item);
            Q_EMIT box->activated(item);
            const int value = box->itemData(item).toInt();
            EXPECT_EQ(kept(*box), value < 0 ? QString() : QString::number(value))
                << box->objectName().toStdString();
        }
    }
    for (QCheckBox* const box : preferences.findChildren<QCheckBox*>()) {
        EXPECT_EQ(box->isChecked(), box->objectName().startsWith(u"Disable"));
        for (const int clicks : { 1, 2 }) {
            box->click();
            EXPECT_EQ(kept(*box), QString::number(clicks % 2));
        }
    }
    for (QLineEdit* const field : preferences.findChildren<QLineEdit*>()) {
        for (const QString& text : { u" some.example "_s, u" "_s }) {
            field->setText(text);
            Q_EMIT field->editingFinished();
            EXPECT_EQ(kept(*field), text.trimmed());
        }
    }
    // And the next window shows it.
    m_defaults.setInteger("DisplayName", 1);
    m_defaults.setInteger("OpenLinksInBackground", 1);
    m_defaults.setInteger("StatusCellFontSize", 77);
    end();
    start();
    QMainWindow& again = m_delegate->preferencesWindowController().window();
    EXPECT_EQ(find<QComboBox>(again, u"DisplayName"_s)->currentData(), 1);
    EXPECT_TRUE(find<QCheckBox>(again, u"OpenLinksInBackground"_s)->isChecked());
    EXPECT_EQ(find<QComboBox>(again, u"StatusCellFontSize"_s)->currentText(), u"Normal"_s);
}

TEST(PelinorHotKeyFieldTests, TakesOneCombinationThatIsNobodyElses)
{
    QTemporaryDir directory;
    KRUserDefaults defaults(directory.filePath(u"defaults.ini"_s));
    PelinorHotKeys keys(defaults, [](PelinorHotKeys::Type) {});
    const auto kept = [&] {
        return u"%1 %2"_s.arg(defaults.integerForKey("NewTweetHotkey_code"))
            .arg(defaults.integerForKey("NewTweetHotkey_mods"), 0, 16);
    };
    PelinorHotKeyField field(keys, PelinorHotKeys::NewTweet, nullptr);
    field.show();
    auto* const recorder = field.findChild<QKeySequenceEdit*>();
    const auto* const trouble = field.findChild<QLabel*>(u"hotKeyTrouble"_s);
    const QString noDisplay = u"This desktop"_s;
    const struct {
        QString typed;
        QString kept;
        QString trouble;
    } cases[] = {
        { u"Ctrl+Alt+K"_s, u"75 c000000"_s, noDisplay },
        { u"Ctrl+A, Ctrl+B"_s, u"66 4000000"_s, noDisplay },
        { u"Shift+K"_s, u"0 0"_s, u"A hot key needs Ctrl, Alt or the Super key."_s },
        { {}, u"0 0"_s, {} },
        { u"Ctrl+F5"_s, u"16777268 4000000"_s, noDisplay },
    };
    for (const auto& test : cases) {
        recorder->setKeySequence(QKeySequence(test.typed));
        EXPECT_EQ(kept(), test.kept);
        EXPECT_TRUE(trouble->text().startsWith(test.trouble)) << trouble->text().toStdString();
        EXPECT_EQ(trouble->isVisible(), !test.trouble.isNull());
        expectThatNothingOverlaps(field);
    }
    for (const Qt::Key alone : { Qt::Key_Control, Qt::Key_Shift, Qt::Key_Alt, Qt::Key_Meta })
        QTest::keyClick(recorder, alone);
    (void)keys.registerKeyCode(1, 2, 3);
    EXPECT_EQ(kept(), cases[4].kept) << "a modifier alone is no hot key, and there is no third one";
    EXPECT_EQ(PelinorHotKeyField(keys, PelinorHotKeys::NewTweet, nullptr)
                  .findChild<QKeySequenceEdit*>()
                  ->keySequence(),
        QKeySequence(u"Ctrl+F5"_s));
    field.findChild<QToolButton*>()->click();
    EXPECT_EQ(kept(), u"0 0"_s);
    EXPECT_EQ(defaults.integerForKey("ShowHidePelinorHotkey_code"), 0);
}

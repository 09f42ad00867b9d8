#include "app/settings/PelinorGeneralPreferencesController.h"

#include "app/look/PelinorDisplayPreferences.h"
#include "foundation/KRUserDefaults.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

PelinorGeneralPreferencesController::PelinorGeneralPreferencesController(KRUserDefaults& defaults,
    QWidget* parent)
    : QWidget(parent)
    , m_defaults(defaults)
{
    auto* const layout = new QFormLayout(this);
    // The values are those that the defaults have always held.
    _addChoice(*layout,
        tr("&Font size:"),
        "StatusCellFontSize",
        { { tr("Tiny"), 11 },
            { tr("Small"), 10 },
            { tr("Normal"), 0 },
            { tr("Large"), 1 },
            { tr("Huge"), 2 } },
        Affects::Display);
    _addChoice(*layout,
        tr("&Names:"),
        "DisplayName",
        { { tr("Full name"), PelinorDisplayPreferences::DisplayFullName },
            { tr("User name"), PelinorDisplayPreferences::DisplayUserName } },
        Affects::Display);
    _addSwitch(*layout,
        tr("&Dim posts that were selected before"),
        "DimPreviouslySelectedTweets",
        Affects::Display);
    _addChoice(*layout,
        tr("When new posts &arrive:"),
        "AutoScrollBehavior",
        { { tr("Stay where I am reading"), 0 }, { tr("At the top, follow the newest"), 1 } },
        Affects::Nothing);
    _addChoice(*layout,
        tr("&Reposts read:"),
        "RepostSyntax",
        { { tr("text (via @name)"), 0 }, { tr("RT @name: text"), 1 } },
        Affects::Nothing);
    _addSwitch(*layout, tr("&Preview where short links lead"), "PreviewShortURLs", Affects::Nothing);
    _addSwitch(*layout, tr("Open links in the &background"), "OpenLinksInBackground", Affects::Nothing);
    _addFilterTerms(*layout);
}

PelinorGeneralPreferencesController::~PelinorGeneralPreferencesController() = default;

void PelinorGeneralPreferencesController::_addChoice(QFormLayout& layout,
    const QString& label,
    const char* key,
    const QList<Choice>& choices,
    Affects affects)
{
    auto* const box = new QComboBox(this);
    box->setObjectName(QLatin1String(key));
    for (const Choice& choice : choices)
        box->addItem(choice.text, choice.value);
    const int shown = box->findData(m_defaults.integerForKey(key));
    box->setCurrentIndex(shown >= 0 ? shown : box->findData(0));
    connect(box, &QComboBox::activated, this, [this, box, key, affects] {
        m_defaults.setInteger(key, box->currentData().toInt());
        if (affects == Affects::Display)
            Q_EMIT displayPreferencesChanged();
    });
    layout.addRow(label, box);
}

void PelinorGeneralPreferencesController::_addSwitch(QFormLayout& layout,
    const QString& text,
    const char* key,
    Affects affects)
{
    auto* const box = new QCheckBox(text, this);
    box->setObjectName(QLatin1String(key));
    box->setChecked(m_defaults.boolForKey(key));
    connect(box, &QCheckBox::toggled, this, [this, key, affects](bool isOn) {
        m_defaults.setInteger(key, isOn ? 1 : 0);
        if (affects == Affects::Display)
            Q_EMIT displayPreferencesChanged();
    });
    layout.addRow(QString(), box);
}

void PelinorGeneralPreferencesController::_addFilterTerms(QFormLayout& layout)
{
    auto* const terms = new QPlainTextEdit(m_defaults.stringListForKey("filterTerms").join(u'\n'), this);
    terms->setObjectName(u"filterTerms"_s);
    terms->setTabChangesFocus(true);
    terms->setFixedHeight(4 * terms->fontMetrics().lineSpacing());
    terms->setPlaceholderText(
        tr("From the next start on, posts with these words are left out. One on a line"));
    connect(terms, &QPlainTextEdit::textChanged, this, [this, terms] {
        QStringList list;
        for (const QString& term : terms->toPlainText().split(u'\n')) {
            if (!term.trimmed().isEmpty())
                list.append(term.trimmed());
        }
        m_defaults.setStringList("filterTerms", list);
    });
    auto* const label = new QLabel(tr("&Leave out:"), this);
    label->setBuddy(terms);
    layout.addRow(label, terms);
}

#include "app/window/PelinorGoToUserPanel.h"

#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

PelinorGoToUserPanel::PelinorGoToUserPanel(QWidget* parent)
    : QDialog(parent)
    , m_comboBox(new QComboBox(this))
{
    setObjectName(u"goToUserPanel"_s);
    setWindowTitle(tr("Go to User"));
    setWindowModality(Qt::WindowModal);
    m_comboBox->setObjectName(u"goToUserComboBox"_s);
    m_comboBox->setEditable(true);
    m_comboBox->setInsertPolicy(QComboBox::NoInsert);
    m_comboBox->setMinimumWidth(240);
    m_comboBox->completer()->setCaseSensitivity(Qt::CaseInsensitive);
    m_comboBox->completer()->setCompletionMode(QCompleter::PopupCompletion);

    // The names proposed below the field keep Return to themselves.
    connect(m_comboBox->lineEdit(), &QLineEdit::returnPressed, this, &PelinorGoToUserPanel::goToUserAction);

    auto* const label = new QLabel(tr("&User name:"), this);
    label->setBuddy(m_comboBox);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    auto* const go = buttons->addButton(tr("Go"), QDialogButtonBox::AcceptRole);
    go->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &PelinorGoToUserPanel::goToUserAction);
    connect(buttons, &QDialogButtonBox::rejected, this, &PelinorGoToUserPanel::goToUserCancel);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_comboBox);
    layout->addWidget(buttons);
}

PelinorGoToUserPanel::~PelinorGoToUserPanel() = default;

void PelinorGoToUserPanel::goToUser(const QStringList& usernames)
{
    m_comboBox->clear();
    m_comboBox->addItems(usernames);
    m_comboBox->clearEditText();
    open();
    m_comboBox->setFocus();
}

void PelinorGoToUserPanel::goToUserAction()
{
    // Return reaches the button, too.
    if (!isVisible())
        return;
    QString name = m_comboBox->currentText().trimmed();
    if (name.startsWith(u'@'))
        name.remove(0, 1);
    accept();
    if (!name.isEmpty())
        Q_EMIT userChosen(name);
}

void PelinorGoToUserPanel::goToUserCancel()
{
    reject();
}

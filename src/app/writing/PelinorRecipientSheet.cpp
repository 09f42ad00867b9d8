#include "app/writing/PelinorRecipientSheet.h"

#include "app/look/PelinorAlert.h"

#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

PelinorRecipientSheet::PelinorRecipientSheet(TwitterAccountPtr account,
    const QStringList& usernames,
    QWidget* parent)
    : QDialog(parent)
    , m_account(std::move(account))
    , m_comboBox(new QComboBox(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(u"directMessageUserPanel"_s);
    setWindowTitle(tr("Direct Message"));
    setWindowModality(Qt::WindowModal);
    m_comboBox->setObjectName(u"directMessageUserComboBox"_s);
    m_comboBox->setEditable(true);
    m_comboBox->setInsertPolicy(QComboBox::NoInsert);
    m_comboBox->setMinimumWidth(240);
    m_comboBox->addItems(usernames);
    m_comboBox->clearEditText();
    m_comboBox->completer()->setCaseSensitivity(Qt::CaseInsensitive);
    auto* const label = new QLabel(tr("&Send a message to:"), this);
    label->setBuddy(m_comboBox);
    m_buttons->button(QDialogButtonBox::Ok)->setObjectName(u"directMessageOKButton"_s);
    m_buttons->button(QDialogButtonBox::Cancel)->setObjectName(u"directMessageCancelButton"_s);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &PelinorRecipientSheet::directMessageOKSelectUser);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_comboBox);
    layout->addWidget(m_buttons);
}

PelinorRecipientSheet::~PelinorRecipientSheet() = default;

void PelinorRecipientSheet::directMessageOKSelectUser()
{
    QString name = m_comboBox->currentText().trimmed();
    if (name.startsWith(u'@'))
        name.remove(0, 1);
    if (name.isEmpty())
        return;
    if (const TwitterUserPtr known = m_account->cachedUserWithUsername(name)) {
        _choose(known);
        return;
    }
    _setBusy(true);
    m_account->requestUserWithUsername(name,
        KRCallback<TwitterUserPtr>::withFunction(
            [sheet = QPointer(this)](const KRResult<TwitterUserPtr>& response) {
                if (sheet)
                    sheet->_userResponse(response);
            }));
}

void PelinorRecipientSheet::_userResponse(const KRResult<TwitterUserPtr>& response)
{
    _setBusy(false);
    if (!response.isError()) {
        _choose(response.value());
        return;
    }
    PelinorShowAlert(QMessageBox::Critical, tr("Error"), response.error().description, this);
}

void PelinorRecipientSheet::_setBusy(bool isBusy)
{
    m_comboBox->setEnabled(!isBusy);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(!isBusy);
    if (!isBusy)
        m_comboBox->setFocus();
}

void PelinorRecipientSheet::_choose(const TwitterUserPtr& user)
{
    accept();
    Q_EMIT recipientChosen(user);
}

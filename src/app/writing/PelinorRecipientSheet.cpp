#include "app/writing/PelinorRecipientSheet.h"

#include "app/look/PelinorAlert.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// What was typed, without the mark that names have in texts.
QString nameIn(const QString& text)
{
    const QString name = text.trimmed();
    return name.startsWith(u'@') ? name.sliced(1) : name;
}

} // namespace

PelinorRecipientSheet::PelinorRecipientSheet(const Twitter& twitter,
    TwitterAccountPtr account,
    QWidget* parent)
    : QDialog(parent)
    , m_account(std::move(account))
    , m_names(twitter)
    , m_comboBox(new QComboBox(this))
    , m_progressIndicator(new QProgressBar(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(u"directMessageUserPanel"_s);
    setWindowTitle(tr("Direct Message"));
    setWindowModality(Qt::WindowModal);
    m_comboBox->setObjectName(u"directMessageUserComboBox"_s);
    m_comboBox->setEditable(true);
    m_comboBox->setInsertPolicy(QComboBox::NoInsert);
    m_comboBox->setMinimumWidth(240);
    // Thousands of names are not measured for the width of one.
    m_comboBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_comboBox->setModel(new QStringListModel(m_names.cachedUsernames(), m_comboBox));
    m_comboBox->setCompleter(nullptr);
    m_comboBox->setCurrentIndex(-1);
    m_comboBox->clearEditText();
    connect(m_comboBox->lineEdit(), &QLineEdit::textEdited, this, &PelinorRecipientSheet::_complete);
    m_progressIndicator->setObjectName(u"directMessageProgressIndicator"_s);
    m_progressIndicator->setAccessibleName(tr("Progress"));
    m_progressIndicator->setRange(0, 0);
    m_progressIndicator->setTextVisible(false);
    m_progressIndicator->setFixedHeight(6);
    // Nothing moves when it comes.
    QSizePolicy policy = m_progressIndicator->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_progressIndicator->setSizePolicy(policy);
    m_progressIndicator->hide();
    auto* const label = new QLabel(tr("&Send a message to:"), this);
    label->setBuddy(m_comboBox);
    m_buttons->button(QDialogButtonBox::Ok)->setObjectName(u"directMessageOKButton"_s);
    m_buttons->button(QDialogButtonBox::Cancel)->setObjectName(u"directMessageCancelButton"_s);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &PelinorRecipientSheet::directMessageOKSelectUser);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_comboBox);
    layout->addWidget(m_progressIndicator);
    layout->addWidget(m_buttons);
}

PelinorRecipientSheet::~PelinorRecipientSheet() = default;

void PelinorRecipientSheet::_complete(const QString& text)
{
    // What was deleted is not to come back.
    const bool isLonger = text.size() > std::exchange(m_typedLength, text.size());
    QLineEdit& field = *m_comboBox->lineEdit();
    const QString name = nameIn(text);
    const QString completed = m_names.completedString(name);
    if (!isLonger || completed.isEmpty() || field.cursorPosition() != text.size())
        return;
    // Up and Down go on from this name.
    m_comboBox->setCurrentIndex(int(m_names.indexOfName(completed)));
    field.setText(text + completed.sliced(name.size()));
    field.setSelection(int(text.size()), int(field.text().size()));
}

void PelinorRecipientSheet::directMessageOKSelectUser()
{
    const QString name = nameIn(m_comboBox->currentText());
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
    // Escape closes it all the same.
    m_buttons->setEnabled(!isBusy);
    m_progressIndicator->setVisible(isBusy);
    if (!isBusy)
        m_comboBox->setFocus();
}

void PelinorRecipientSheet::_choose(const TwitterUserPtr& user)
{
    accept();
    Q_EMIT recipientChosen(user);
}

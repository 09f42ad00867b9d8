#include "app/links/PelinorOpenAddressSheet.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int MinimumWidth = 380;
constexpr int AddressHeight = 80;

} // namespace

void PelinorOpenAddressSheet::ask(QWidget* view, const QUrl& url, Agreed agreed)
{
    auto* const sheet = new PelinorOpenAddressSheet(view ? view->window() : nullptr, url, std::move(agreed));
    sheet->open();
}

PelinorOpenAddressSheet::PelinorOpenAddressSheet(QWidget* parent, const QUrl& url, Agreed agreed)
    : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Open Address?"));
    setMinimumWidth(MinimumWidth);

    auto* const question
        = new QLabel(tr("This link is no ordinary web or mail address. Do you want to open it?"));
    question->setWordWrap(true);
    // Encoded, so that no letter looks like another one or turns the reading direction round.
    auto* const address = new QPlainTextEdit(QString::fromLatin1(url.toEncoded()));
    address->setReadOnly(true);
    address->setTabChangesFocus(true);
    address->setMaximumHeight(AddressHeight);
    address->setAccessibleName(tr("Address"));
    question->setBuddy(address);

    auto* const buttons = new QDialogButtonBox;
    QPushButton* const openButton = buttons->addButton(tr("Open"), QDialogButtonBox::AcceptRole);
    QPushButton* const cancelButton = buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    openButton->setAutoDefault(false);
    cancelButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::accepted, this, [url, agreed = std::move(agreed)] { agreed(url); });

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addWidget(address);
    layout->addWidget(buttons);
    cancelButton->setFocus();
}

#include "app/look/PelinorAlert.h"

#include <QLabel>

QMessageBox*
PelinorMakeAlert(QMessageBox::Icon icon, const QString& message, const QString& information, QWidget* parent)
{
    auto* const alert = new QMessageBox(icon, {}, message, QMessageBox::NoButton, parent);
    alert->setTextFormat(Qt::PlainText);
    alert->setInformativeText(information);
    // The format counts for the message alone; what the other label holds would be guessed from its text.
    for (QLabel* const label : alert->findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setWindowModality(Qt::WindowModal);
    return alert;
}

void PelinorShowAlert(QMessageBox::Icon icon,
    const QString& message,
    const QString& information,
    QWidget* parent)
{
    QMessageBox* const alert = PelinorMakeAlert(icon, message, information, parent);
    alert->addButton(QMessageBox::Ok);
    alert->open();
}

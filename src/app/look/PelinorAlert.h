#pragma once

#include <QMessageBox>

/// Makes an alert whose texts, which others may have written, are plain text in every line of it. It is a
/// sheet on the parent's window, has no buttons yet, and deletes itself when it is closed. Main thread.
[[nodiscard]] QMessageBox*
PelinorMakeAlert(QMessageBox::Icon icon, const QString& message, const QString& information, QWidget* parent);
/// Opens one with the button "OK", and waits for nothing.
void PelinorShowAlert(QMessageBox::Icon icon,
    const QString& message,
    const QString& information,
    QWidget* parent);

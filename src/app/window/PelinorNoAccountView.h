#pragma once

#include <QWidget>

/// What the main window shows while nobody is signed in: that this is so, and the one thing to do about it.
/// Main thread.
class PelinorNoAccountView final : public QWidget {
    Q_OBJECT

public:
    PelinorNoAccountView();

Q_SIGNALS:
    void addAccountClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
};

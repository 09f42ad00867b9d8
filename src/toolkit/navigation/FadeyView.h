#pragma once

#include <QWidget>

/// The narrow end of a navigation bar under which crumbs that find no room disappear: the bar's own
/// background, clear at its inner edge. It takes part in nothing. Main thread.
class FadeyView : public QWidget {
    Q_OBJECT

public:
    explicit FadeyView(QWidget* parent);
    ~FadeyView() override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

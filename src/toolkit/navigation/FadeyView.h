#pragma once

#include <QWidget>

/// The narrow end of a navigation bar under which crumbs that find no room disappear: the bar's own
/// background, clear at its inner edge. It takes part in nothing. Main thread.
class KRFadeyView : public QWidget {
    Q_OBJECT

public:
    explicit KRFadeyView(QWidget* parent);
    ~KRFadeyView() override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

#pragma once

#include "foundation/KRRunLoop.h"

#include <QWidget>

/// The spinner that turns while something is being loaded, and is not there otherwise. It stands still where
/// the user wants nothing to move. Main thread.
class PelinorProgressIndicator : public QWidget {
    Q_OBJECT

public:
    static constexpr int Side = 14;

    explicit PelinorProgressIndicator(QWidget* parent);
    ~PelinorProgressIndicator() override;

    [[nodiscard]] bool isAnimating() const { return m_isAnimating; }
    void startAnimation();
    void stopAnimation();

    QSize sizeHint() const override { return { Side, Side }; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_isAnimating = false;
    int m_step = 0;
    KRTimer m_timer;
};

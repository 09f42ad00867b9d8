#pragma once

#include <QLabel>

/// Plain text in as many lines as it takes, all of which are always shown: the window grows with them, which
/// it does not for a label whose height depends on its width. Main thread.
class PelinorWrappedLabel : public QLabel {
    Q_OBJECT

public:
    explicit PelinorWrappedLabel(QWidget* parent);
    ~PelinorWrappedLabel() override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override;
};

#pragma once

#include <QWidget>

#include <memory>
#include <vector>

class KRTransitionLayer;

/// Stands where two screens change places and shows the layers that do. It hides whatever is behind it. Main
/// thread.
class KRTransitionView : public QWidget {
    Q_OBJECT

public:
    explicit KRTransitionView(QWidget* parent);
    ~KRTransitionView() override;

    /// Drawn above those added before.
    void addLayer(std::shared_ptr<const KRTransitionLayer> layer);

Q_SIGNALS:
    /// Nobody sees it any longer: its window was hidden or closed, or it is being destroyed.
    void wentAway();

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    std::vector<std::shared_ptr<const KRTransitionLayer>> m_layers;
};

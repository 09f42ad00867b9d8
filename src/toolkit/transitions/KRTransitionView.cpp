#include "toolkit/transitions/KRTransitionView.h"

#include "toolkit/transitions/KRTransitionLayer.h"

#include <QPainter>

#include <algorithm>

KRTransitionView::KRTransitionView(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

KRTransitionView::~KRTransitionView()
{
    Q_EMIT wentAway();
}

void KRTransitionView::addLayer(std::shared_ptr<const KRTransitionLayer> layer)
{
    m_layers.push_back(std::move(layer));
    update();
}

void KRTransitionView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    std::vector<std::shared_ptr<const KRTransitionLayer>> layers = m_layers;
    std::stable_sort(layers.begin(), layers.end(), [](const auto& left, const auto& right) {
        return left->zPosition() < right->zPosition();
    });
    for (const auto& layer : layers)
        layer->draw(painter);
}

void KRTransitionView::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    Q_EMIT wentAway();
}

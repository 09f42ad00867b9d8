#include "toolkit/KRViewFrame.h"

#include <QCoreApplication>
#include <QPointer>
#include <QResizeEvent>
#include <QWidget>

namespace {

void sendPendingResizeEvents(QWidget& view)
{
    if (view.testAttribute(Qt::WA_PendingResizeEvent)) {
        view.setAttribute(Qt::WA_PendingResizeEvent, false);
        QResizeEvent event(view.size(), QSize());
        QCoreApplication::sendEvent(&view, &event);
    }
    // A view may make and destroy others when it learns its size.
    QList<QPointer<QWidget>> children;
    for (QWidget* child : view.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        children.append(child);
    for (const QPointer<QWidget>& child : children) {
        if (child && !child->isWindow())
            sendPendingResizeEvents(*child);
    }
}

} // namespace

void KRSetViewFrame(QWidget& view, const QRect& frame)
{
    view.setGeometry({ frame.topLeft(), frame.size().expandedTo(QSize(0, 0)) });
    sendPendingResizeEvents(view);
}

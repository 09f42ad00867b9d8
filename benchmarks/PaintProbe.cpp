// A plugin that any Qt program loads on request: it writes one byte to file descriptor 3 when the program's
// first window has been painted. So programs are timed from outside, all in the same way, and know nothing of
// it.

#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>

#include <unistd.h>

namespace {

constexpr int reportDescriptor = 3;

class Probe final : public QObject {
public:
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && receiver->isWidgetType()) {
            QCoreApplication::instance()->removeEventFilter(this);
            // What is painted now is on the screen when the event loop comes round again.
            QMetaObject::invokeMethod(this, &Probe::_report, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void _report()
    {
        if (::write(reportDescriptor, "p", 1) != 1)
            qWarning("nobody wants to know of the first painting");
    }
};

} // namespace

class PaintProbe final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "PaintProbe.json")

public:
    QObject* create(const QString&, const QString&) override
    {
        auto* probe = new Probe;
        QCoreApplication::instance()->installEventFilter(probe);
        return probe;
    }
};

#include "PaintProbe.moc"

#include "app/window/PelinorMainWindow.h"

#include "app/look/PelinorCellColors.h"
#include "app/window/PelinorErrorStrip.h"
#include "app/window/PelinorWindowStatus.h"
#include "foundation/KRUserDefaults.h"
#include "toolkit/KRLiveResize.h"

#include <QCloseEvent>
#include <QPainter>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

constexpr QSize MinimumSize(340, 300);
constexpr QSize InitialSize(420, 720);
constexpr char GeometryKey[] = "MainWindowGeometry";

} // namespace

// A thin line that has colour while anything is being loaded. It does not move: a window that only waits has
// nothing to draw.
class PelinorMainWindow::ActivityLine final : public QWidget {
public:
    explicit ActivityLine(QWidget* parent)
        : QWidget(parent)
    {
        setFixedHeight(2);
    }

    void setActive(bool isActive)
    {
        if (m_isActive == isActive)
            return;
        m_isActive = isActive;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
        QPainter(this).fillRect(rect(), m_isActive ? colors.selectionMark : colors.background);
    }

private:
    bool m_isActive = false;
};

PelinorMainWindow::PelinorMainWindow(PelinorListEnvironment environment, PelinorListAccount& account)
    : m_environment(environment)
    , m_list(environment, account)
    , m_status(PelinorWindowStatus::observing(environment.notifications))
    , m_errorStrip(new PelinorErrorStrip(this))
    , m_activityLine(new ActivityLine(this))
{
    setWindowTitle(QStringLiteral("Pelinor"));
    setMinimumSize(MinimumSize);
    new KRLiveResize(*this);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_activityLine);
    layout->addWidget(m_errorStrip);
    layout->addWidget(&m_list.tableView(), 1);
    m_list.tableView().setFocus();

    connect(m_errorStrip, &PelinorErrorStrip::dismissed, this, [this] { m_status->clearErrors(); });
    auto* const refresh = new QShortcut(QKeySequence::Refresh, this);
    connect(refresh, &QShortcut::activated, this, [this] { m_list.refresh(); });
    m_status->setChangeHandler([this] { _statusDidChange(); });
    _restoreGeometry();
}

PelinorMainWindow::~PelinorMainWindow()
{
    m_status->setChangeHandler({});
    _leaveList();
}

void PelinorMainWindow::_restoreGeometry()
{
    const QByteArray geometry = m_environment.defaults.dataForKey(GeometryKey);
    if (geometry.isEmpty() || !restoreGeometry(geometry))
        resize(InitialSize);
}

void PelinorMainWindow::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    // The window is on the screen before the first text has loaded the fonts and the first request libcurl.
    if (!m_listIsShown)
        QMetaObject::invokeMethod(this, &PelinorMainWindow::_showList, Qt::QueuedConnection);
}

void PelinorMainWindow::_showList()
{
    if (m_listIsShown || !isVisible())
        return;
    m_listIsShown = true;
    m_list.viewWillAppear(false);
}

void PelinorMainWindow::closeEvent(QCloseEvent* event)
{
    m_environment.defaults.setData(GeometryKey, saveGeometry());
    _leaveList();
    QWidget::closeEvent(event);
}

void PelinorMainWindow::_leaveList()
{
    if (!m_listIsShown)
        return;
    m_listIsShown = false;
    m_list.viewWillDisappear(false);
}

void PelinorMainWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_errorStrip)
        m_list.updateColors();
}

void PelinorMainWindow::_statusDidChange()
{
    m_errorStrip->setText(m_status->currentError() ? m_status->currentError()->description : QString());
    m_activityLine->setActive(m_status->isNetworkActive());
}

#include "app/lists/PelinorStatusListViewController.h"

#include "app/lists/PelinorPlaceholderTableViewCells.h"
#include "app/look/PelinorCellColors.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterDummyStatus.h"
#include "text/render/KRColorConversion.h"

#include <algorithm>
#include <typeinfo>

namespace {

constexpr auto DateInterval = std::chrono::minutes(1);
constexpr int JumpToNewest = 1;

template <class Cell, class... Arguments>
Cell* reusedOrNewCell(KRTableView& tableView, Arguments&&... arguments)
{
    KRTableViewCell* cell = tableView.dequeueReusableCellWithIdentifier(Cell::identifier());
    return cell ? static_cast<Cell*>(cell) : new Cell(std::forward<Arguments>(arguments)...);
}

bool isExactlyAStatus(const TwitterStatus& status)
{
    return typeid(status) == typeid(TwitterStatus);
}

LoadingTableViewCell::State stateOf(const TwitterDummyMissingStatus& row)
{
    return row.isLoading() ? LoadingTableViewCell::State::Loading : LoadingTableViewCell::State::Waiting;
}

} // namespace

PelinorStatusListViewController::PelinorStatusListViewController(PelinorListEnvironment environment,
    PelinorListAccount& account)
    : m_environment(environment)
    , m_account(account)
{
}

PelinorStatusListViewController::~PelinorStatusListViewController()
{
    if (m_tableView)
        m_tableView->setDelegate(nullptr);
}

KRTableView& PelinorStatusListViewController::tableView()
{
    if (!m_tableView) {
        auto* const tableView = new KRTableView;
        // Until a window takes the view, it is the list's own.
        m_unplacedTableView.reset(tableView);
        m_tableView = tableView;
        tableView->setAccessibleName(KRTableView::tr("Posts"));
        tableView->setDelegate(this);
        updateColors();
    }
    return *m_tableView;
}

// Visits

void PelinorStatusListViewController::viewWillAppear(bool /*animated*/)
{
    if (m_unplacedTableView && m_unplacedTableView->parentWidget())
        static_cast<void>(m_unplacedTableView.release());
    tableView().reloadData();
    m_preferencesObservation
        = m_environment.notifications.observe<PelinorDisplayPreferencesDidChangeNotification>(
            [this](const PelinorDisplayPreferencesDidChangeNotification&) { displayPreferencesDidChange(); });
    m_dateTimer
        = KRRunLoop::main().scheduleTimer(DateInterval, KRRunLoop::Repeats::Yes, [this] { _updateDates(); });
}

void PelinorStatusListViewController::viewWillDisappear(bool /*animated*/)
{
    m_preferencesObservation.invalidate();
    m_dateTimer.invalidate();
    saveScrollPosition();
    if (tableView().isScrolledToTop())
        noteFreshness();
}

void PelinorStatusListViewController::displayPreferencesDidChange()
{
    tableView().reloadData();
}

void PelinorStatusListViewController::updateColors()
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(tableView().palette());
    const KRColor background = KRColorFromQColor(colors.background);
    if (!(background == tableView().backgroundKRColor()))
        tableView().setBackgroundKRColor(background);
}

void PelinorStatusListViewController::_updateDates()
{
    const KRRange rows = tableView().currentRange();
    for (qsizetype row = rows.location; row < rows.end(); ++row) {
        if (auto* const cell = qobject_cast<PelinorStatusTableViewCell*>(tableView().cellForRow(row)))
            cell->updateDate();
    }
}

// Rows

void PelinorStatusListViewController::setStatuses(const TwitterStatusList& statuses)
{
    m_newStatuses = statuses;
    tableView().reloadData();
}

void PelinorStatusListViewController::tableViewWillReload(KRTableView& tableView)
{
    if (!m_newStatuses)
        return;
    m_followsNewest = tableView.isScrolledToTop()
        && m_environment.defaults.integerForKey("AutoScrollBehavior") == JumpToNewest;
    if (!m_statuses.isEmpty())
        saveScrollPosition();
    m_statuses = *std::exchange(m_newStatuses, std::nullopt);
    m_restoresPlace = true;
}

void PelinorStatusListViewController::tableViewDidReload(KRTableView& tableView)
{
    if (!std::exchange(m_restoresPlace, false))
        return;
    restoreScrollPosition();
    if (m_followsNewest)
        tableView.scrollToRow(0);
}

TwitterStatusPtr PelinorStatusListViewController::statusForRow(qint64 row) const
{
    return row >= 0 && row < m_statuses.size() ? m_statuses.at(row) : nullptr;
}

qint64 PelinorStatusListViewController::rowForStatus(const TwitterStatus& status) const
{
    const auto found
        = std::find_if(m_statuses.begin(), m_statuses.end(), [&](const TwitterStatusPtr& candidate) {
              return candidate.get() == &status || candidate->isEqual(status);
          });
    return found == m_statuses.end() ? NoRow : found - m_statuses.begin();
}

bool PelinorStatusListViewController::_hasPosts() const
{
    return !_oldestStatusID().isNull();
}

QString PelinorStatusListViewController::_oldestStatusID() const
{
    for (auto status = m_statuses.rbegin(); status != m_statuses.rend(); ++status) {
        if ((*status)->isNotADummyStatus())
            return (*status)->statusID();
    }
    return {};
}

// The reader's place

QString PelinorStatusListViewController::_topSavedStatusIDDefaultsKey() const
{
    return QStringLiteral("%1__top_saved_status_id").arg(autosaveName());
}

QString PelinorStatusListViewController::_topSavedStatusIDOffsetDefaultsKey() const
{
    return QStringLiteral("%1__top_saved_status_offset").arg(autosaveName());
}

QString PelinorStatusListViewController::_selectedStatusIDDefaultsKey() const
{
    return QStringLiteral("%1__selected_status_id").arg(autosaveName());
}

void PelinorStatusListViewController::saveScrollPosition()
{
    if (autosaveName().isNull())
        return;
    const KRRange visible = tableView().visibleRange();
    for (qsizetype row = visible.location; row < visible.end(); ++row) {
        const TwitterStatusPtr status = statusForRow(row);
        if (!status || !isExactlyAStatus(*status))
            continue;
        KRUserDefaults& defaults = m_environment.defaults;
        defaults.setString(_topSavedStatusIDDefaultsKey(), status->statusID());
        defaults.setInteger(_topSavedStatusIDOffsetDefaultsKey(),
            tableView().relativeVisibleOffsetForRow(row));
        defaults.setInteger(_selectedStatusIDDefaultsKey(), int(tableView().selectedRow()));
        return;
    }
}

void PelinorStatusListViewController::restoreScrollPosition()
{
    if (autosaveName().isNull())
        return;
    const KRUserDefaults& defaults = m_environment.defaults;
    const QString statusID = defaults.stringForKey(_topSavedStatusIDDefaultsKey());
    if (statusID.isEmpty())
        return;
    const auto status
        = std::find_if(m_statuses.begin(), m_statuses.end(), [&](const TwitterStatusPtr& candidate) {
              return candidate->statusID() == statusID && rowForStatus(*candidate) != NoRow;
          });
    if (status == m_statuses.end())
        return;
    tableView().scrollToRow(rowForStatus(**status),
        defaults.integerForKey(_topSavedStatusIDOffsetDefaultsKey()));
    // By its number, not by its status: after new rows the selection is on whatever has that number now.
    tableView().selectRow(defaults.integerForKey(_selectedStatusIDDefaultsKey()));
}

// The table's delegate

int PelinorStatusListViewController::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    return int(m_statuses.size());
}

PelinorStatusCellLayout PelinorStatusListViewController::_layoutOfStatus(const TwitterStatus& status) const
{
    return { m_account.isAuthorOfStatus(status),
        shouldAmplifyStatus(status) ? KRStatusTextSize::Enlarged : KRStatusTextSize::Normal };
}

int PelinorStatusListViewController::tableViewHeightForRow(KRTableView& tableView, qint64 row)
{
    const TwitterStatusPtr status = statusForRow(row);
    const int width = tableView.width();
    if (!status)
        return 0;
    if (dynamic_cast<const TwitterDummyLoadingStatus*>(status.get()))
        return LoadingTableViewCell::heightForTableWidth(width);
    if (dynamic_cast<const TwitterDummyMissingStatus*>(status.get()))
        return LoadingTableViewCell::heightForTableWidth(width);
    if (dynamic_cast<const TwitterDummyEndOfStreamStatus*>(status.get()))
        return EndOfStreamTableViewCell::heightForTableWidth(width);
    if (dynamic_cast<const TwitterDummyHeaderStatus*>(status.get()))
        return HeaderStreamTableViewCell::heightForTableWidth(width);
    if (dynamic_cast<const TwitterDummyErrorStatus*>(status.get()))
        return ErrorStreamTableViewCell::heightForTableWidth(width);
    return PelinorStatusTableViewCell::heightForStatus(*status,
        width,
        _layoutOfStatus(*status),
        m_environment.displayPreferences,
        m_environment.heights);
}

KRTableViewCell* PelinorStatusListViewController::tableViewCellForRow(KRTableView& tableView, qint64 row)
{
    const TwitterStatusPtr status = statusForRow(row);
    if (!status)
        return nullptr;
    if (dynamic_cast<const TwitterDummyLoadingStatus*>(status.get()))
        return _loadingCell(tableView);
    if (dynamic_cast<const TwitterDummyMissingStatus*>(status.get()))
        return _missingCell(tableView, std::static_pointer_cast<TwitterDummyMissingStatus>(status));
    if (dynamic_cast<const TwitterDummyEndOfStreamStatus*>(status.get())) {
        auto* const cell = reusedOrNewCell<EndOfStreamTableViewCell>(tableView);
        cell->setHasPosts(_hasPosts());
        return cell;
    }
    if (dynamic_cast<const TwitterDummyHeaderStatus*>(status.get()))
        return reusedOrNewCell<HeaderStreamTableViewCell>(tableView);
    if (const auto* const error = dynamic_cast<const TwitterDummyErrorStatus*>(status.get())) {
        auto* const cell = reusedOrNewCell<ErrorStreamTableViewCell>(tableView);
        cell->setError(error->error());
        return cell;
    }
    return _statusCell(tableView, status);
}

KRTableViewCell* PelinorStatusListViewController::_statusCell(KRTableView& tableView,
    const TwitterStatusPtr& status)
{
    auto* const cell = reusedOrNewCell<PelinorStatusTableViewCell>(tableView, m_environment.notifications);
    cell->setDelegate(this);
    cell->setStatus(status, _layoutOfStatus(*status), m_environment.displayPreferences);
    return cell;
}

QString PelinorStatusListViewController::tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row)
{
    const TwitterStatusPtr status = statusForRow(row);
    if (!status)
        return {};
    if (isExactlyAStatus(*status))
        return PelinorStatusTableViewCell::accessibleNameForStatus(*status);
    // What the row's cell will say when it comes into view.
    if (dynamic_cast<const TwitterDummyLoadingStatus*>(status.get())) {
        const bool isWaiting = _hasPosts() && m_loadedOlderThan == _oldestStatusID();
        return LoadingTableViewCell::textForState(
            isWaiting ? LoadingTableViewCell::State::Waiting : LoadingTableViewCell::State::Loading);
    }
    if (const auto* const missing = dynamic_cast<const TwitterDummyMissingStatus*>(status.get()))
        return LoadingTableViewCell::textForState(stateOf(*missing), LoadingTableViewCell::Place::Gap);
    if (dynamic_cast<const TwitterDummyEndOfStreamStatus*>(status.get()))
        return EndOfStreamTableViewCell::textForPosts(_hasPosts());
    if (const auto* const error = dynamic_cast<const TwitterDummyErrorStatus*>(status.get()))
        return ErrorStreamTableViewCell::textForError(error->error());
    return {};
}

void PelinorStatusListViewController::pelinorCellClickedLink(KRTableViewCell& cell,
    const QString& link,
    qint64 /*row*/,
    int type)
{
    if (m_environment.links)
        KRHandleLink(link, type, *m_environment.links, &cell);
}

KRTableViewCell* PelinorStatusListViewController::_loadingCell(KRTableView& tableView)
{
    auto* const cell = reusedOrNewCell<LoadingTableViewCell>(tableView);
    cell->setClickHandler([this] { loadOlder(); });
    const bool isLoading = _loadOlderOnce() || !_hasPosts();
    cell->setState(isLoading ? LoadingTableViewCell::State::Loading : LoadingTableViewCell::State::Waiting);
    return cell;
}

KRTableViewCell* PelinorStatusListViewController::_missingCell(KRTableView& tableView,
    const std::shared_ptr<TwitterDummyMissingStatus>& status)
{
    auto* const cell = reusedOrNewCell<LoadingTableViewCell>(tableView);
    cell->setClickHandler([this, status] { loadMissing(*status); });
    cell->setState(stateOf(*status), LoadingTableViewCell::Place::Gap);
    return cell;
}

bool PelinorStatusListViewController::_loadOlderOnce()
{
    // A list without posts is waiting for its first page, below which nothing can be asked for.
    const QString oldest = _oldestStatusID();
    if (oldest.isNull() || m_loadedOlderThan == oldest)
        return false;
    m_loadedOlderThan = oldest;
    loadOlder();
    return true;
}

void PelinorStatusListViewController::tableViewDidSelectRow(KRTableView& /*tableView*/, qint64 row)
{
    if (const TwitterStatusPtr status = statusForRow(row))
        status->setIsRead(true);
}

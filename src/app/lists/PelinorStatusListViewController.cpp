#include "app/lists/PelinorStatusListViewController.h"

#include "app/look/PelinorDisplayPreferences.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterDummyStatus.h"
#include "text/render/KRTextHeightCache.h"

#include <algorithm>
#include <typeinfo>

namespace {

constexpr int JumpToNewest = 1;
constexpr int MeasuredAtOnce = 40;

const TwitterDummyMissingStatus& missing(const TwitterStatusPtr& status)
{
    return static_cast<const TwitterDummyMissingStatus&>(*status);
}

bool isAfterFailure(const TwitterStatus& end)
{
    const auto* const row = dynamic_cast<const TwitterDummyEndOfStreamStatus*>(&end);
    return row && row->isAfterFailure();
}

LoadingTableViewCell::State stateOf(const TwitterDummyMissingStatus& row)
{
    return row.isLoading() ? LoadingTableViewCell::State::Loading : LoadingTableViewCell::State::Waiting;
}

} // namespace

// Visits

void PelinorStatusListViewController::viewWillAppear(bool /*animated*/)
{
    // The font, or the window's width, may have changed while another screen was there.
    tableView().reloadDataKeepingPlace();
    m_preferencesObservation
        = environment().notifications.observe<PelinorDisplayPreferencesDidChangeNotification>(
            [this](const PelinorDisplayPreferencesDidChangeNotification&) { displayPreferencesDidChange(); });
    m_dateTimer = everyMinute([this] {
        forEachShownCell<PelinorStatusTableViewCell>([](auto& cell, qint64 /*row*/) { cell.updateDate(); });
    });
    const std::shared_ptr<TwitterStream> stream = this->stream();
    if (!stream)
        return;
    m_streamObservation = environment().notifications.observe<TwitterStreamDidUpdateNotification>(
        [this](const TwitterStreamDidUpdateNotification&) { streamDidUpdate(); },
        stream.get());
    // Failures are announced on the background thread.
    m_errorObservation = environment().notifications.observe<TwitterStreamErrorNotification>(
        [list = QPointer<PelinorStatusListViewController>(this)](const TwitterStreamErrorNotification&) {
            KRRunLoop::main().post([list] {
                if (list)
                    list->_streamDidFail();
            });
        },
        stream.get());
    m_destroyedObservation = environment().notifications.observe<TwitterAccountDidDestroyStatusNotification>(
        [this](const TwitterAccountDidDestroyStatusNotification& destroyed) {
            this->stream()->removeStatus(*destroyed.status);
        },
        account().get());
    const TwitterStatusList statuses = stream->statuses();
    setStatuses(statuses);
    if (std::ranges::none_of(statuses, &TwitterStatus::isNotADummyStatus))
        stream->loadNewer();
}

void PelinorStatusListViewController::viewWillDisappear(bool /*animated*/)
{
    m_errorObservation.invalidate();
    m_destroyedObservation.invalidate();
    m_streamObservation.invalidate();
    m_preferencesObservation.invalidate();
    m_dateTimer.invalidate();
    m_measuring.invalidate();
    saveScrollPosition();
    if (tableView().isScrolledToTop())
        noteFreshness();
}

void PelinorStatusListViewController::streamDidUpdate()
{
    m_isLoadingOlder = false;
    m_hasAnswer = true;
    m_arrived = stream()->statuses();
    m_nextToMeasure = 0;
    _measureArrived();
}

void PelinorStatusListViewController::_measureArrived()
{
    // Measuring is what takes time when many posts come. The user is heard between two lots of them, and the
    // reload finds all heights known.
    const int measuredBefore = environment().heights.measuredCount();
    for (; m_nextToMeasure < m_arrived.size(); ++m_nextToMeasure) {
        if (environment().heights.measuredCount() - measuredBefore >= MeasuredAtOnce) {
            m_measuring = KRRunLoop::main().scheduleTimer(KRRunLoop::Duration::zero(),
                KRRunLoop::Repeats::No,
                [this] { _measureArrived(); });
            return;
        }
        const TwitterStatus& status = *m_arrived.at(m_nextToMeasure);
        if (_kindOf(status) == RowKind::Status)
            _heightOfStatus(status);
    }
    m_measuring.invalidate();
    setStatuses(std::exchange(m_arrived, {}));
}

void PelinorStatusListViewController::_streamDidFail()
{
    // A stream that failed below its oldest post has ended there; a newer page can fail as often as it likes.
    m_didFail = m_oldestStatusID.isNull() || m_loadedOlderThan == m_oldestStatusID;
    m_isLoadingOlder = false;
    tableView().reloadDataKeepingPlace();
}

void PelinorStatusListViewController::refresh()
{
    if (const std::shared_ptr<TwitterStream> stream = this->stream())
        stream->loadNewer();
}

void PelinorStatusListViewController::loadOlder()
{
    const std::shared_ptr<TwitterStream> stream = this->stream();
    if (!stream)
        return;
    m_loadedOlderThan = m_oldestStatusID;
    m_isLoadingOlder = true;
    m_didFail = false;
    stream->loadOlder();
    _updateLoadingCell();
}

// Looks

void PelinorStatusListViewController::displayPreferencesDidChange()
{
    tableView().reloadDataKeepingPlace();
}

// Rows

PelinorStatusListViewController::RowKind PelinorStatusListViewController::_kindOf(const TwitterStatus& status)
{
    if (typeid(status) == typeid(TwitterStatus))
        return RowKind::Status;
    if (dynamic_cast<const TwitterDummyLoadingStatus*>(&status))
        return RowKind::Loading;
    if (dynamic_cast<const TwitterDummyMissingStatus*>(&status))
        return RowKind::Missing;
    if (dynamic_cast<const TwitterDummyEndOfStreamStatus*>(&status))
        return RowKind::End;
    if (dynamic_cast<const TwitterDummyHeaderStatus*>(&status))
        return RowKind::Header;
    if (dynamic_cast<const TwitterDummyErrorStatus*>(&status))
        return RowKind::Error;
    return RowKind::Status;
}

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
        && environment().defaults.integerForKey("AutoScrollBehavior") == JumpToNewest;
    if (!m_statuses.isEmpty())
        saveScrollPosition();
    m_statuses = *std::exchange(m_newStatuses, std::nullopt);
    m_kinds.clear();
    const QString formerOldest = std::exchange(m_oldestStatusID, QString());
    for (const TwitterStatusPtr& status : std::as_const(m_statuses)) {
        m_kinds.push_back(_kindOf(*status));
        if (m_kinds.back() == RowKind::Status && !status->statusID().isNull())
            m_oldestStatusID = status->statusID();
    }
    m_didFail = m_didFail && m_oldestStatusID == formerOldest;
    // An answer without posts leaves nothing to wait for.
    if (m_hasAnswer && !m_kinds.empty() && m_kinds.back() == RowKind::Loading
        && std::ranges::none_of(m_statuses, &TwitterStatus::isNotADummyStatus))
        m_kinds.back() = RowKind::End;
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

void PelinorStatusListViewController::tableViewDidShowRows(KRTableView& /*tableView*/, KRRange rows)
{
    // A list without posts is waiting for its first page, below which nothing can be asked for.
    const bool isLoadingRowShown = !m_kinds.empty() && m_kinds.back() == RowKind::Loading
        && rows.contains(qsizetype(m_kinds.size()) - 1);
    if (isLoadingRowShown && !m_oldestStatusID.isNull() && m_loadedOlderThan != m_oldestStatusID)
        loadOlder();
}

TwitterStatusPtr PelinorStatusListViewController::statusForRow(qint64 row) const
{
    return row >= 0 && row < m_statuses.size() ? m_statuses.at(row) : nullptr;
}

qint64 PelinorStatusListViewController::rowForStatus(const TwitterStatus& status) const
{
    const auto found = std::ranges::find_if(m_statuses, [&](const TwitterStatusPtr& candidate) {
        return candidate.get() == &status || candidate->isEqual(status);
    });
    return found == m_statuses.end() ? NoRow : found - m_statuses.begin();
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
        if (!status || m_kinds[size_t(row)] != RowKind::Status)
            continue;
        KRUserDefaults& defaults = environment().defaults;
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
    const KRUserDefaults& defaults = environment().defaults;
    const QString statusID = defaults.stringForKey(_topSavedStatusIDDefaultsKey());
    if (statusID.isEmpty())
        return;
    const auto status = std::ranges::find_if(m_statuses, [&](const TwitterStatusPtr& candidate) {
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
    return { account()->isAuthorOfStatus(status),
        shouldAmplifyStatus(status) ? KRStatusTextSize::Enlarged : KRStatusTextSize::Normal };
}

int PelinorStatusListViewController::_heightOfStatus(const TwitterStatus& status)
{
    return PelinorStatusTableViewCell::heightForStatus(status,
        tableView().width(),
        _layoutOfStatus(status),
        environment().displayPreferences,
        environment().heights);
}

int PelinorStatusListViewController::tableViewHeightForRow(KRTableView& tableView, qint64 row)
{
    const TwitterStatusPtr status = statusForRow(row);
    const int width = tableView.width();
    if (!status)
        return 0;
    switch (m_kinds[size_t(row)]) {
    case RowKind::Header:
        return HeaderStreamTableViewCell::heightForTableWidth(width);
    case RowKind::Loading:
    case RowKind::Missing:
        return LoadingTableViewCell::heightForTableWidth(width);
    case RowKind::End:
        return EndOfStreamTableViewCell::heightForTableWidth(width);
    case RowKind::Error:
        return ErrorStreamTableViewCell::heightForTableWidth(width);
    case RowKind::Status:
        break;
    }
    return _heightOfStatus(*status);
}

KRTableViewCell* PelinorStatusListViewController::tableViewCellForRow(KRTableView& tableView, qint64 row)
{
    const TwitterStatusPtr status = statusForRow(row);
    if (!status)
        return nullptr;
    switch (m_kinds[size_t(row)]) {
    case RowKind::Header:
        return reusedOrNewCell<HeaderStreamTableViewCell>(tableView);
    case RowKind::Loading:
        return _loadingCell(tableView);
    case RowKind::Missing:
        return _missingCell(tableView, status);
    case RowKind::End:
        return _endCell(tableView, *status);
    case RowKind::Error: {
        auto* const cell = reusedOrNewCell<ErrorStreamTableViewCell>(tableView);
        cell->setText(_textOfPlaceholder(row));
        return cell;
    }
    case RowKind::Status:
        break;
    }
    return _statusCell(tableView, status);
}

KRTableViewCell* PelinorStatusListViewController::_statusCell(KRTableView& tableView,
    const TwitterStatusPtr& status)
{
    auto* const cell = reusedOrNewCell<PelinorStatusTableViewCell>(tableView, environment().notifications);
    cell->setDelegate(this);
    cell->setStatus(status, _layoutOfStatus(*status), environment().displayPreferences);
    cell->setIsFavorite(account()->isFavoriteStatus(*status));
    cell->setIsHighlighted(highlightMentions() && account()->isMentionedInStatus(*status));
    return cell;
}

KRTableViewCell* PelinorStatusListViewController::_loadingCell(KRTableView& tableView)
{
    auto* const cell = reusedOrNewCell<LoadingTableViewCell>(tableView);
    cell->setClickHandler([this] { _loadMore(); });
    cell->setState(_loadingState());
    return cell;
}

KRTableViewCell* PelinorStatusListViewController::_missingCell(KRTableView& tableView,
    const TwitterStatusPtr& status)
{
    auto* const cell = reusedOrNewCell<LoadingTableViewCell>(tableView);
    cell->setClickHandler([this, status] { stream()->loadMissing(missing(status)); });
    cell->setState(stateOf(missing(status)), LoadingTableViewCell::Place::Gap);
    return cell;
}

KRTableViewCell* PelinorStatusListViewController::_endCell(KRTableView& tableView,
    const TwitterStatus& status)
{
    if (isAfterFailure(status)) {
        auto* const cell = reusedOrNewCell<LoadingTableViewCell>(tableView);
        cell->setClickHandler([this] { _loadOlderAgain(); });
        cell->setState(LoadingTableViewCell::State::Failed, LoadingTableViewCell::Place::End);
        return cell;
    }
    auto* const cell = reusedOrNewCell<EndOfStreamTableViewCell>(tableView);
    cell->setText(_endText(status));
    return cell;
}

void PelinorStatusListViewController::_loadOlderAgain()
{
    m_didFail = false;
    stream()->loadOlderAgain();
    m_isLoadingOlder = true;
    _updateLoadingCell();
}

LoadingTableViewCell::State PelinorStatusListViewController::_loadingState() const
{
    using State = LoadingTableViewCell::State;
    if (m_didFail)
        return State::Failed;
    return m_isLoadingOlder || m_oldestStatusID.isNull() ? State::Loading : State::Waiting;
}

void PelinorStatusListViewController::_loadMore()
{
    if (!m_oldestStatusID.isNull()) {
        loadOlder();
        return;
    }
    m_didFail = false;
    refresh();
    _updateLoadingCell();
}

void PelinorStatusListViewController::_updateLoadingCell()
{
    const qint64 row = qint64(m_kinds.size()) - 1;
    if (row < 0 || m_kinds.back() != RowKind::Loading)
        return;
    if (auto* const cell = qobject_cast<LoadingTableViewCell*>(tableView().cellForRow(row)))
        cell->setState(_loadingState());
}

QString PelinorStatusListViewController::_endText(const TwitterStatus& status) const
{
    using Loading = LoadingTableViewCell;
    if (isAfterFailure(status))
        return Loading::textForState(Loading::State::Failed, Loading::Place::End);
    return m_oldestStatusID.isNull() ? emptyText() : tr("No older posts");
}

QString PelinorStatusListViewController::_textOfPlaceholder(qint64 row) const
{
    const TwitterStatusPtr status = statusForRow(row);
    using Loading = LoadingTableViewCell;
    switch (m_kinds[size_t(row)]) {
    case RowKind::Loading:
        return Loading::textForState(_loadingState());
    case RowKind::Missing:
        return Loading::textForState(stateOf(missing(status)), Loading::Place::Gap);
    case RowKind::End:
        return _endText(*status);
    case RowKind::Error:
        return static_cast<const TwitterDummyErrorStatus&>(*status).error().description.simplified();
    case RowKind::Header:
    case RowKind::Status:
        break;
    }
    return {};
}

QString PelinorStatusListViewController::tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row)
{
    const TwitterStatusPtr status = statusForRow(row);
    if (!status)
        return {};
    return m_kinds[size_t(row)] == RowKind::Status
        ? PelinorStatusTableViewCell::accessibleNameForStatus(*status)
        : _textOfPlaceholder(row);
}

void PelinorStatusListViewController::tableViewDidSelectRow(KRTableView& /*tableView*/, qint64 row)
{
    if (const TwitterStatusPtr status = statusForRow(row))
        status->setIsRead(true);
}

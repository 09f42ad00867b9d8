#pragma once

#include "app/lists/PelinorPlaceholderTableViewCells.h"
#include "app/lists/PelinorStatusActions.h"
#include "app/lists/PelinorStatusTableViewCell.h"
#include "app/lists/PelinorTableViewController.h"
#include "foundation/KRNotificationCenter.h"

#include <limits>
#include <optional>
#include <vector>

/// Shows statuses, one a row, and keeps the reader's place: across new rows, and across visits through the
/// user defaults. Subclasses say where the statuses come from. Main thread.
class PelinorStatusListViewController : public PelinorTableViewController, public PelinorCellDelegate {
    Q_OBJECT

public:
    /// What rowForStatus() answers for a status that is not shown.
    static constexpr qint64 NoRow = std::numeric_limits<qint32>::max();

    using PelinorTableViewController::PelinorTableViewController;

    /// A list that is not on the screen observes nothing.
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    const TwitterStatusList& statuses() const { return m_statuses; }
    /// Replaces the rows, once the user has let go of the scroller. The reader's place stays where it is on
    /// screen, unless the list is at its top and the user wants to follow the newest.
    void setStatuses(const TwitterStatusList& statuses);
    /// Null for a row that is not there.
    TwitterStatusPtr statusForRow(qint64 row) const;
    qint64 rowForStatus(const TwitterStatus& status) const;

    void saveScrollPosition();
    void restoreScrollPosition();
    void displayPreferencesDidChange();

    QString title() const override { return tr("Statuses"); }
    /// What the list says when there is nothing in it.
    virtual QString emptyText() const { return tr("No posts yet"); }
    /// The list's name in the user defaults; nothing is saved without one.
    virtual QString autosaveName() const { return {}; }
    /// The stream whose statuses are shown; null for a list that is given them.
    virtual std::shared_ptr<TwitterStream> stream() { return nullptr; }
    /// The user leaves the list, having seen its top.
    virtual void noteFreshness() { }
    virtual bool highlightMentions() const { return false; }
    virtual bool shouldAmplifyStatus(const TwitterStatus& /*status*/) const { return false; }
    void refresh();
    void loadOlder();

    /// What keys and menus do with the selected post.
    enum class Command {
        Details,
        Author,
        Reply,
        Repost,
        PostLink,
        DirectMessage,
        ToggleFavorite,
        OpenInBrowser,
        Destroy
    };
    [[nodiscard]] bool hasSelectedPost();
    /// Nothing without a selected post.
    void perform(Command command);

    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;
    void tableViewWillReload(KRTableView& tableView) override;
    void tableViewDidReload(KRTableView& tableView) override;
    void tableViewDidShowRows(KRTableView& tableView, KRRange rows) override;
    bool tableViewKeyDown(KRTableView& tableView, const QKeyEvent& event) override;
    void tableViewDidSelectRow(KRTableView& tableView, qint64 row) override;

    void pelinorStatusCellReplyToStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status) override;
    void pelinorStatusCellRepostStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status) override;
    void pelinorStatusCellPostLinkToStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status) override;
    void pelinorStatusCellDirectMessageUser(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status) override;
    void pelinorStatusCellToggleFavoriteForStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status) override;
    void pelinorStatusCellDestroyStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status) override;
    void pelinorStatusCellViewOnTwitter(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status) override;
    void pelinorCellStatusDetails(KRTableViewCell& cell, qint64 row) override;
    void pelinorCellFromUserDetailsForRow(KRTableViewCell& cell, qint64 row) override;
    void pelinorCellClickedLink(KRTableViewCell& cell, const QString& link, qint64 row, int type) override;

private:
    enum class RowKind { Status, Header, Loading, Missing, End, Error };
    static RowKind _kindOf(const TwitterStatus& status);

    void streamDidUpdate();
    void _measureArrived();
    int _heightOfStatus(const TwitterStatus& status);
    void _streamDidFail();
    QString _topSavedStatusIDDefaultsKey() const;
    QString _topSavedStatusIDOffsetDefaultsKey() const;
    QString _selectedStatusIDDefaultsKey() const;
    PelinorStatusCellLayout _layoutOfStatus(const TwitterStatus& status) const;
    QString _textOfPlaceholder(qint64 row) const;
    KRTableViewCell* _statusCell(KRTableView& tableView, const TwitterStatusPtr& status);
    KRTableViewCell* _loadingCell(KRTableView& tableView);
    KRTableViewCell* _missingCell(KRTableView& tableView, const TwitterStatusPtr& status);
    LoadingTableViewCell::State _loadingState() const;
    void _loadMore();
    QString _endText(const TwitterStatus& status) const;
    KRTableViewCell* _endCell(KRTableView& tableView, const TwitterStatus& status);
    void _loadOlderAgain();
    void _updateLoadingCell();
    PelinorStatusActions _actions() const { return { environment(), account() }; }

    TwitterStatusList m_statuses;
    std::vector<RowKind> m_kinds;
    // What the next reload shows.
    std::optional<TwitterStatusList> m_newStatuses;
    bool m_restoresPlace = false;
    bool m_followsNewest = false;
    // The oldest post with an ID; null without one.
    QString m_oldestStatusID;
    // Below which status older ones were last asked for. A page that brings none below it is not asked for
    // again just because the end of the list is on screen.
    std::optional<QString> m_loadedOlderThan;
    bool m_isLoadingOlder = false;
    bool m_hasAnswer = false;
    // The last load of older posts, or of the first ones, went wrong.
    bool m_didFail = false;
    // What the stream has brought, and how far its heights are known.
    TwitterStatusList m_arrived;
    qsizetype m_nextToMeasure = 0;
    KRTimer m_measuring;
    KRTimer m_dateTimer;
    KRObservation m_preferencesObservation;
    KRObservation m_streamObservation;
    KRObservation m_errorObservation;
    KRObservation m_destroyedObservation;
};

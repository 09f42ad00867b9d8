#pragma once

#include "app/links/PelinorLinks.h"
#include "app/lists/PelinorListAccount.h"
#include "app/lists/PelinorStatusTableViewCell.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "foundation/KRNotificationCenter.h"
#include "foundation/KRRunLoop.h"
#include "text/render/KRTextHeightCache.h"
#include "toolkit/KRTableView.h"
#include "toolkit/KRTableViewDelegate.h"

#include <limits>
#include <optional>
#include <utility>

class KRUserDefaults;

/// What every list works with. Outlives the lists.
struct PelinorListEnvironment {
    KRUserDefaults& defaults;
    KRNotificationCenter& notifications;
    const PelinorDisplayPreferences& displayPreferences;
    KRTextHeightCache& heights;
    /// Without it, clicks on links do nothing.
    const PelinorLinkEnvironment* links = nullptr;
};

/// Shows statuses, one a row, and keeps the reader's place: across new rows, and across visits through the
/// user defaults. Subclasses say where the statuses come from. Main thread.
class PelinorStatusListViewController : public KRTableViewDelegate, public PelinorCellDelegate {
public:
    /// What rowForStatus() answers for a status that is not shown.
    static constexpr qint64 NoRow = std::numeric_limits<qint32>::max();

    PelinorStatusListViewController(PelinorListEnvironment environment, PelinorListAccount& account);
    ~PelinorStatusListViewController() override;

    /// The list's view; made on the first call. Whoever puts it into a window owns it from then on.
    KRTableView& tableView();
    PelinorListAccount& account() const { return m_account; }

    /// Around the time the view is on screen. A list that is not observes nothing.
    virtual void viewWillAppear(bool animated);
    virtual void viewWillDisappear(bool animated);

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
    /// Takes over how the desktop looks now.
    void updateColors();

    /// The list's name in the user defaults; nothing is saved without one.
    virtual QString autosaveName() const { return {}; }
    /// The user leaves the list, having seen its top.
    virtual void noteFreshness() { }
    virtual void loadOlder() { }
    /// Loads what is missing where the row stands.
    virtual void loadMissing(const TwitterDummyMissingStatus& /*row*/) { }
    virtual void refresh() { }
    virtual bool shouldAmplifyStatus(const TwitterStatus& /*status*/) const { return false; }

    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;
    void tableViewWillReload(KRTableView& tableView) override;
    void tableViewDidReload(KRTableView& tableView) override;
    void tableViewDidSelectRow(KRTableView& tableView, qint64 row) override;
    void pelinorCellClickedLink(KRTableViewCell& cell, const QString& link, qint64 row, int type) override;

protected:
    const PelinorListEnvironment& environment() const { return m_environment; }

private:
    QString _topSavedStatusIDDefaultsKey() const;
    QString _topSavedStatusIDOffsetDefaultsKey() const;
    QString _selectedStatusIDDefaultsKey() const;
    PelinorStatusCellLayout _layoutOfStatus(const TwitterStatus& status) const;
    KRTableViewCell* _statusCell(KRTableView& tableView, const TwitterStatusPtr& status);
    KRTableViewCell* _loadingCell(KRTableView& tableView);
    KRTableViewCell* _missingCell(KRTableView& tableView,
        const std::shared_ptr<TwitterDummyMissingStatus>& status);
    bool _loadOlderOnce();
    bool _hasPosts() const;
    QString _oldestStatusID() const;
    void _updateDates();

    PelinorListEnvironment m_environment;
    PelinorListAccount& m_account;
    std::unique_ptr<KRTableView> m_unplacedTableView;
    QPointer<KRTableView> m_tableView;
    TwitterStatusList m_statuses;
    // What the next reload shows.
    std::optional<TwitterStatusList> m_newStatuses;
    bool m_restoresPlace = false;
    bool m_followsNewest = false;
    // Below which status older ones were last asked for. A page that brings none below it is not asked for
    // again just because the end of the list is on screen.
    std::optional<QString> m_loadedOlderThan;
    KRTimer m_dateTimer;
    KRObservation m_preferencesObservation;
};

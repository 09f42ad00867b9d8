#pragma once

#include "app/links/PelinorScreens.h"
#include "foundation/KRRunLoop.h"
#include "toolkit/KRTableView.h"
#include "toolkit/KRTableViewDelegate.h"

#include <utility>

/// A screen that is one table, in the colours of the desktop. The account is set before the view appears.
/// Main thread.
class PelinorTableViewController : public KRViewController, public KRTableViewDelegate {
    Q_OBJECT

public:
    explicit PelinorTableViewController(const PelinorScreenEnvironment& environment);
    ~PelinorTableViewController() override;

    const TwitterAccountPtr& account() const { return m_account; }
    void setAccount(TwitterAccountPtr account) { m_account = std::move(account); }

    /// The screen's view, or a part of it.
    KRTableView& tableView();
    /// What the bar says of the screen.
    virtual QString title() const = 0;

    void loadView() override;
    void viewDidLoad() override;

protected:
    const PelinorScreenEnvironment& environment() const { return m_environment; }
    /// For a screen that has more than the table: makes it, for the screen to place.
    std::unique_ptr<KRTableView> makeTableView();
    /// Nothing outside of a navigation stack.
    void push(const KRViewControllerPtr& screen);
    bool eventFilter(QObject* watched, QEvent* event) override;

    /// For what tells how long ago something was. Runs while the timer is kept.
    template <class Do>
    static KRTimer everyMinute(Do what)
    {
        return KRRunLoop::main().scheduleTimer(std::chrono::minutes(1), KRRunLoop::Repeats::Yes, what);
    }
    /// Calls it with every cell of the class that is on the screen, and with its row.
    template <class Cell, class Do>
    void forEachShownCell(Do what)
    {
        const KRRange rows = tableView().currentRange();
        for (qsizetype row = rows.location; row < rows.end(); ++row) {
            if (auto* const cell = qobject_cast<Cell*>(tableView().cellForRow(row)))
                what(*cell, row);
        }
    }
    /// An idle cell of the class, or a new one made from the arguments.
    template <class Cell, class... Arguments>
    static Cell* reusedOrNewCell(KRTableView& tableView, Arguments&&... arguments)
    {
        KRTableViewCell* cell = tableView.dequeueReusableCellWithIdentifier(Cell::identifier());
        return cell ? static_cast<Cell*>(cell) : new Cell(std::forward<Arguments>(arguments)...);
    }

private:
    void _updateColors();

    PelinorScreenEnvironment m_environment;
    TwitterAccountPtr m_account;
    QPointer<KRTableView> m_tableView;
};

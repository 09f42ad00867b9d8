#pragma once

#include "app/lists/PelinorStatusListViewController.h"

class KRBarButton;

/// What a search finds. A button in the bar keeps the search, or lets go of it. Main thread.
class PelinorSearchViewController final : public PelinorStatusListViewController {
    Q_OBJECT

public:
    using PelinorStatusListViewController::PelinorStatusListViewController;

    /// Before the view is loaded.
    void setSearch(TwitterSearchPtr search) { m_search = std::move(search); }
    const TwitterSearchPtr& search() const { return m_search; }

    QString title() const override;
    QString emptyText() const override { return tr("Nothing was found"); }
    QString autosaveName() const override;
    std::shared_ptr<TwitterStream> stream() override { return m_search->stream(); }
    void noteFreshness() override;
    void viewDidLoad() override;

    [[nodiscard]] bool isSaved() const { return account()->containsSavedSearch(*m_search); }
    void toggleSaved();

private:
    void _updateButton();

    TwitterSearchPtr m_search;
    QPointer<KRBarButton> m_saveButton;
};

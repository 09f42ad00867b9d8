#pragma once

#include "app/lists/PelinorStatusListViewController.h"

/// The account's home timeline.
class PelinorTweetsListViewController final : public PelinorStatusListViewController {
public:
    using PelinorStatusListViewController::PelinorStatusListViewController;

    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    QString autosaveName() const override;
    void noteFreshness() override;
    void loadOlder() override;
    void loadMissing(const TwitterDummyMissingStatus& row) override;
    void refresh() override;

private:
    void streamDidUpdate();

    KRObservation m_streamObservation;
};

#pragma once

#include "app/lists/PelinorStatusListViewController.h"

/// An account's home timeline.
class PelinorTweetsListViewController : public PelinorStatusListViewController {
    Q_OBJECT

public:
    using PelinorStatusListViewController::PelinorStatusListViewController;

    QString title() const override { return tr("Timeline"); }
    QString autosaveName() const override
    {
        return QStringLiteral("%1_____timeline").arg(account()->qualifiedName());
    }
    std::shared_ptr<TwitterStream> stream() override { return account()->timelineStream(); }
    void noteFreshness() override { account()->noteFreshTweets(); }
    bool highlightMentions() const override { return true; }
};

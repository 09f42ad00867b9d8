#pragma once

#include "app/lists/PelinorStatusListViewController.h"

/// The posts that mention an account.
class PelinorRepliesListViewController final : public PelinorStatusListViewController {
    Q_OBJECT

public:
    using PelinorStatusListViewController::PelinorStatusListViewController;

    QString title() const override { return tr("Mentions"); }
    QString emptyText() const override { return tr("No mentions yet"); }
    QString autosaveName() const override
    {
        return QStringLiteral("%1_____mentions").arg(account()->qualifiedName());
    }
    std::shared_ptr<TwitterStream> stream() override { return account()->repliesStream(); }
    void noteFreshness() override { account()->noteFreshMentions(); }
};

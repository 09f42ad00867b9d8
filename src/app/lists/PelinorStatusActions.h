#pragma once

#include "app/links/PelinorScreens.h"

class QUrl;

/// What can be done with a post of an account's list: each opens a window or tells the account. Nothing
/// happens with what a post lacks, an author or an address. Main thread.
class PelinorStatusActions {
public:
    PelinorStatusActions(const PelinorScreenEnvironment& environment, TwitterAccountPtr account)
        : m_environment(environment)
        , m_account(std::move(account))
    {
    }

    using Point = std::optional<QPoint>;

    void reply(const TwitterStatusPtr& status, const Point& replyPoint) const;
    void repost(const TwitterStatus& status, const Point& replyPoint) const;
    /// A new post with the address of the status's page.
    void postLink(const TwitterStatus& status, const Point& replyPoint) const;
    void directMessage(const TwitterUserPtr& user) const;
    /// Whether it is a favourite afterwards.
    bool toggleFavorite(const TwitterStatusPtr& status) const;
    /// Deletes one of the account's own, once the user has agreed in a sheet on the view's window.
    void destroy(const TwitterStatusPtr& status, QWidget* view) const;
    void openInBrowser(const TwitterStatus& status, QWidget* view) const;

    /// What a repost begins with, in the way the user wants that written.
    [[nodiscard]] QString repostText(const TwitterStatus& status) const;
    /// The status's page; empty when there is none.
    [[nodiscard]] QUrl addressOf(const TwitterStatus& status) const;

private:
    PelinorScreenEnvironment m_environment;
    TwitterAccountPtr m_account;
};

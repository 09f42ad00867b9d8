#pragma once

#include "core/TwitterAccount.h"

#include <functional>
#include <optional>

/// Whom a person follows, or who follows them, a page at a time, each of them once. Main thread; owned by a
/// std::shared_ptr.
class PelinorPeople : public std::enable_shared_from_this<PelinorPeople> {
public:
    enum class Kind { Following, Followers };

    PelinorPeople(TwitterAccountPtr account, TwitterUserPtr person, Kind kind);
    PelinorPeople(const PelinorPeople&) = delete;
    PelinorPeople& operator=(const PelinorPeople&) = delete;
    ~PelinorPeople();

    /// Called after every change; an empty function stops that.
    void setChangeHandler(std::function<void()> handler) { m_didChange = std::move(handler); }

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// In the order of the pages.
    [[nodiscard]] const TwitterUserList& people() const { return m_people; }
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    /// The last page brought nobody who was not there.
    [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }
    /// Why the next page could not be loaded.
    [[nodiscard]] const std::optional<KRError>& error() const { return m_error; }
    /// Asks for the next page. Ignored while one is on its way, and at the end.
    void loadMore();

private:
    void pageResponse(const KRResult<TwitterUserList>& response);
    [[nodiscard]] bool _add(const TwitterUserPtr& user);

    TwitterAccountPtr m_account;
    TwitterUserPtr m_person;
    Kind m_kind;
    TwitterUserList m_people;
    QSet<QString> m_known;
    int m_page = 1;
    bool m_isLoading = false;
    bool m_isAtEnd = false;
    std::optional<KRError> m_error;
    std::function<void()> m_didChange;
};

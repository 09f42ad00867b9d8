#pragma once

#include "core/Twitter.h"

#include <vector>

class KRUserDefaults;

/// What the place where searches begin has to offer: the account's saved searches, what was looked for last,
/// and what many write about. Main thread.
class PelinorSearches {
public:
    static constexpr qsizetype MostRecentQueries = 8;

    struct Row {
        enum class Kind {
            Heading,
            /// A sentence in the place of rows.
            Note,
            Saved,
            /// Something to look for.
            Query,
            ForgetRecent,
        };

        Kind kind = Kind::Heading;
        QString title;
        bool isFresh = false;
        /// Null but for a saved one.
        TwitterSearchPtr search = nullptr;
    };

    /// What is referred to outlives it.
    PelinorSearches(TwitterAccountPtr account, Twitter& twitter, KRUserDefaults& defaults);

    [[nodiscard]] std::vector<Row> rows() const;
    /// Why there are no trends, or nothing.
    void setTrendsError(const std::optional<KRError>& error) { m_trendsError = error; }

    /// The saved search, or a new one; it is remembered as a recent one. Null for nothing but white space.
    TwitterSearchPtr searchFor(const QString& query);
    /// The last first.
    [[nodiscard]] QStringList recentQueries() const;
    void forgetRecentQueries();

    void rename(const TwitterSearchPtr& search, const QString& name)
    {
        m_account->renameSavedSearch(search, name);
    }
    void remove(const TwitterSearchPtr& search) { m_account->removeSavedSearch(search); }
    /// By so many places, down for positive ones.
    void move(const TwitterSearchPtr& search, qsizetype distance);

private:
    TwitterAccountPtr m_account;
    Twitter& m_twitter;
    KRUserDefaults& m_defaults;
    std::optional<KRError> m_trendsError;
};

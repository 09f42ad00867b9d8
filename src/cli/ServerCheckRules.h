#pragma once

#include "foundation/KRResult.h"
#include "model/records/TwitterStatus.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QUrl>

/// What one question to a server has brought.
struct ServerCheckResult {
    enum class Outcome {
        Works,
        /// Not as Pelinor asks for it; what that means stands in `meaning`.
        Differs,
        Fails,
        NotTried,
    };

    QString check;
    Outcome outcome = Outcome::NotTried;
    /// What was seen.
    QString finding;
    /// What that means for the user; empty where it means nothing.
    QString meaning;

    [[nodiscard]] bool isPassed() const { return outcome == Outcome::Works || outcome == Outcome::Differs; }
    [[nodiscard]] QJsonObject jsonObject() const;
    /// One or two lines.
    [[nodiscard]] QString text() const;
};

/// What the answers of a server mean. Lists are newest first, as servers send them.
namespace ServerCheckRules {

/// How many posts a page of the checks on paging has, and how many must be there for them.
inline constexpr int pageSize = 3;
inline constexpr int postsNeeded = 5;

/// Whether the error tells that no server was reached, so that further questions would only wait.
[[nodiscard]] bool isUnreachable(const KRError& error);

/// `answer` is the first that was asked for.
[[nodiscard]] ServerCheckResult tls(const KRResult<TwitterStatusList>& answer);
[[nodiscard]] ServerCheckResult searchTLS(const QUrl& searchURL);
[[nodiscard]] ServerCheckResult signIn(const KRResult<bool>& answer, const QString& username);
[[nodiscard]] ServerCheckResult
timeline(const QString& check, const KRResult<TwitterStatusList>& answer, const QString& meaningOfError);

/// What the server makes of limits. `known` are the IDs of a page without any; the answers are those with
/// count = pageSize, since_id and max_id = the third known ID, page = 2.
[[nodiscard]] ServerCheckResult count(const KRResult<QStringList>& answer);
[[nodiscard]] ServerCheckResult sinceID(const QStringList& known, const KRResult<QStringList>& answer);
[[nodiscard]] ServerCheckResult maxID(const QStringList& known, const KRResult<QStringList>& answer);
[[nodiscard]] ServerCheckResult page(const QStringList& known, const KRResult<QStringList>& answer);

/// A word to search for, of the newest post that has one: its longest. Null when there is none.
[[nodiscard]] QString searchWord(const TwitterStatusList& statuses);
/// `isOfAPost` tells whether something must be found.
[[nodiscard]] ServerCheckResult
search(const QString& word, bool isOfAPost, const KRResult<QByteArray>& answer);
[[nodiscard]] ServerCheckResult trends(const KRResult<QStringList>& answer);
[[nodiscard]] ServerCheckResult messages(const QString& check, const KRResult<qsizetype>& answer);
/// The status with which the service answers to a GET, which uploads nothing.
[[nodiscard]] ServerCheckResult uploads(const QUrl& address, const KRResult<int>& answer);
[[nodiscard]] ServerCheckResult uploadsWithoutService(const KRError& error);

/// Whether the post is the one that was sent: some servers answer with another.
[[nodiscard]] ServerCheckResult posting(const QString& text, const KRResult<TwitterStatusPtr>& answer);
[[nodiscard]] ServerCheckResult deleting(const QString& statusID, const KRResult<TwitterStatusPtr>& answer);

[[nodiscard]] ServerCheckResult notTried(const QString& check, const QString& reason);

} // namespace ServerCheckRules

#pragma once

#include "foundation/KRRange.h"
#include "foundation/KRRunLoop.h"

#include <QStringList>

#include <functional>
#include <optional>

class Twitter;

/// Completes the names of people the program knows. Main thread.
class UsernameAutocompletionDelegate {
public:
    /// After somebody stops typing.
    static constexpr KRClock::Duration completionDelay = std::chrono::milliseconds(200);

    /// The root object outlives this.
    explicit UsernameAutocompletionDelegate(const Twitter& twitter)
        : m_twitter(twitter)
    {
    }

    /// In lower case and in their order; made when they are first asked for.
    const QStringList& cachedUsernames();
    /// They are to be made anew.
    void updateUsernames() { m_cachedUsernames.reset(); }
    /// The first name that begins with what was typed, in any case; null when there is none.
    QString completedString(const QString& typed);
    /// The place of a name among them; -1 when it is none.
    qsizetype indexOfName(const QString& name) { return cachedUsernames().indexOf(name); }
    /// The names that begin so, no more than fit below a line.
    QStringList completions(const QString& typed, qsizetype most);

    /// The name that is being typed in front of the cursor, without its "@": at least one letter of it.
    [[nodiscard]] static std::optional<KRRange> nameBefore(const QString& text, qsizetype cursor);

    /// Calls once when the delay has passed, in place of an earlier call that waits.
    void startCompletionTimer(KRRunLoop::Task complete);
    void stopCompletionTimer() { m_completionTimer.invalidate(); }

private:
    const Twitter& m_twitter;
    std::optional<QStringList> m_cachedUsernames;
    KRTimer m_completionTimer;
};

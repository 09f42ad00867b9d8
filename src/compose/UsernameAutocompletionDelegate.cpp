#include "compose/UsernameAutocompletionDelegate.h"

#include "core/Twitter.h"

#include <algorithm>

namespace {

bool isOfName(QChar character)
{
    return character.unicode() < 0x80 && (character.isLetterOrNumber() || character == u'_');
}

} // namespace

const QStringList& UsernameAutocompletionDelegate::cachedUsernames()
{
    if (!m_cachedUsernames) {
        QStringList names;
        for (const TwitterUserPtr& user : m_twitter.cachedUsers())
            names.append(user->username().toLower());
        names.sort(Qt::CaseInsensitive);
        // The same name at several sites.
        names.removeDuplicates();
        m_cachedUsernames = names;
    }
    return *m_cachedUsernames;
}

QString UsernameAutocompletionDelegate::completedString(const QString& typed)
{
    return typed.isEmpty() ? QString() : completions(typed, 1).value(0);
}

QStringList UsernameAutocompletionDelegate::completions(const QString& typed, qsizetype most)
{
    const QString prefix = typed.toLower();
    const QStringList& names = cachedUsernames();
    QStringList found;
    for (auto name = std::lower_bound(names.begin(), names.end(), prefix);
         name != names.end() && name->startsWith(prefix) && found.size() < most;
         ++name)
        found.append(*name);
    return found;
}

std::optional<KRRange> UsernameAutocompletionDelegate::nameBefore(const QString& text, qsizetype cursor)
{
    qsizetype start = cursor;
    while (start > 0 && isOfName(text[start - 1]))
        --start;
    // In the middle of a name, or of an address, there is nothing to complete.
    const bool isEnd = cursor == text.size() || !isOfName(text[cursor]);
    const bool beginsName = start > 0 && text[start - 1] == u'@'
        && (start == 1 || !(text[start - 2].isLetterOrNumber() || text[start - 2] == u'_'));
    if (!isEnd || !beginsName || start == cursor || !text[start].isLetter())
        return std::nullopt;
    return KRRange { start, cursor - start };
}

void UsernameAutocompletionDelegate::startCompletionTimer(KRRunLoop::Task complete)
{
    m_completionTimer
        = KRRunLoop::main().scheduleTimer(completionDelay, KRRunLoop::Repeats::No, std::move(complete));
}

#include "app/messages/PelinorReadMarks.h"

#include "foundation/KRClock.h"
#include "foundation/KRUserDefaults.h"

namespace {

// The first entry of the list is the date that counts for everybody; each other one is a date and a person.
constexpr char listKey[] = "MessagesRead/%1";

QString keyOf(const TwitterUser& person)
{
    return person.userID().isNull() ? u'@' + person.username().toLower() : person.userID();
}

qint64 newestFromOther(const TwitterDirectMessageConversation& conversation, const TwitterAccount& account)
{
    const TwitterDirectMessagePtr newest = conversation.newestMessageNotFrom(account);
    return newest && newest->date().isValid() ? newest->date().toMSecsSinceEpoch() : 0;
}

} // namespace

PelinorReadMarks::PelinorReadMarks(KRUserDefaults& defaults, TwitterAccount& account)
    : m_defaults(defaults)
    , m_account(account)
    , m_key(QLatin1String(listKey).arg(account.qualifiedName()))
{
    QStringList entries = m_defaults.stringListForKey(m_key);
    if (entries.isEmpty()) {
        const QDateTime& seen = m_account.freshMessages();
        m_since = (seen.isValid() ? seen : KRNow()).toMSecsSinceEpoch();
        _save();
        return;
    }
    m_since = entries.takeFirst().toLongLong();
    for (const QString& entry : std::as_const(entries))
        m_readUntil.insert(entry.section(u' ', 1), entry.section(u' ', 0, 0).toLongLong());
}

bool PelinorReadMarks::isUnread(const TwitterDirectMessageConversation& conversation) const
{
    const TwitterUserPtr& person = conversation.correspondent();
    if (!person)
        return false;
    // Somebody who has an ID now may have had none then.
    const qint64 readUntil = std::max({ m_since,
        m_readUntil.value(keyOf(*person)),
        m_readUntil.value(u'@' + person->username().toLower()) });
    return newestFromOther(conversation, m_account) > readUntil;
}

void PelinorReadMarks::noteRead(const TwitterDirectMessageConversation& conversation)
{
    if (!isUnread(conversation))
        return;
    m_readUntil.insert(keyOf(*conversation.correspondent()), newestFromOther(conversation, m_account));
    _save();
}

void PelinorReadMarks::noteAllRead()
{
    for (const TwitterDirectMessageConversationPtr& conversation :
        m_account.directMessagesManager()->conversations())
        noteRead(*conversation);
}

void PelinorReadMarks::_save()
{
    QStringList entries { QString::number(m_since) };
    for (auto mark = m_readUntil.cbegin(); mark != m_readUntil.cend(); ++mark)
        entries.append(QStringLiteral("%1 %2").arg(mark.value()).arg(mark.key()));
    m_defaults.setStringList(m_key, entries);
}

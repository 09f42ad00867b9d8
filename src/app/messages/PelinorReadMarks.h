#pragma once

#include "core/TwitterAccount.h"

#include <QHash>

class KRUserDefaults;

/// Up to when the user has read each of an account's conversations. Kept in the user defaults: what came
/// before the account was first asked about counts as read. Main thread.
class PelinorReadMarks {
public:
    /// The defaults outlive it.
    PelinorReadMarks(KRUserDefaults& defaults, TwitterAccount& account);

    [[nodiscard]] bool isUnread(const TwitterDirectMessageConversation& conversation) const;
    void noteRead(const TwitterDirectMessageConversation& conversation);
    void noteAllRead();

private:
    void _save();

    KRUserDefaults& m_defaults;
    TwitterAccount& m_account;
    QString m_key;
    // Milliseconds since 1970.
    qint64 m_since = 0;
    QHash<QString, qint64> m_readUntil;
};

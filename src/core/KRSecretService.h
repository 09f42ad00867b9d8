#pragma once

#include "foundation/KRClock.h"

#include <QHash>
#include <QString>

#include <functional>
#include <optional>

/// The desktop's Secret Service (freedesktop.org Secret Service API) through libsecret, asked in such a way
/// that nobody waits for a person: every call runs on a thread of its own and is given a bounded time. Main
/// thread.
namespace KRSecretService {

/// What identifies an item.
using Attributes = QHash<QString, QString>;

enum class Status {
    Done,
    /// There is no such item.
    NotFound,
    /// The item, or the keyring it would go to, is locked.
    Locked,
    /// There is no Secret Service, or it did not answer in time.
    Unavailable,
    /// It refused.
    Failed,
};

struct Answer {
    Status status = Status::Unavailable;
    QString password;
    /// The item's path on the bus, to address it by later.
    QString item;
    /// The platform's text where it did not work.
    QString error;
};

/// How long a call may take before it counts as not answered; three seconds unless somebody sets another limit.
KRClock::Duration answerLimit();
void setAnswerLimit(KRClock::Duration limit);

Answer lookUp(const Attributes& attributes);
/// Makes an item, or replaces the password of the one with the same attributes.
Answer store(const Attributes& attributes, const QString& label, const QString& password);
Answer setPassword(const QString& item, const QString& password);
Answer setAttribute(const QString& item, const QString& name, const QString& value);
Answer setLabel(const QString& item, const QString& label);
Answer remove(const Attributes& attributes);
/// Locks the default keyring.
Answer lock();
/// Asks the desktop to unlock the keyring that the item lies in, or the default one for an empty path, which may
/// show the user a prompt; `finished` is called on the main thread when that has ended, with whether it is
/// unlocked now. A request while one is under way joins it, and what it gives is dropped: one unlocking is told
/// once.
void unlockInBackground(const QString& item, std::function<void(bool isUnlocked)> finished);
/// Ends what is under way, prompts included, before the process ends. Nothing may be asked afterwards.
void stop();

} // namespace KRSecretService

// Items by their path on the bus are behind this macro; the functions have not changed since libsecret's
// first release.
#define SECRET_API_SUBJECT_TO_CHANGE 1
// libsecret's headers use "signals" as a name, so they come before Qt's.
#include "core/KRSecretService.h"

#include "foundation/KRRunLoop.h"

#include <QFileInfo>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <libsecret/secret.h>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace {

using KRSecretService::Answer;
using KRSecretService::Attributes;
using KRSecretService::Status;

struct GObjectDeleter {
    void operator()(void* object) const { g_object_unref(object); }
};
template <class T>
using GRef = std::unique_ptr<T, GObjectDeleter>;

/// Ends every call that is under way when the program does.
GCancellable* cancellable()
{
    static GCancellable* shared = g_cancellable_new();
    return shared;
}

struct GErrorHolder {
    GError* error = nullptr;
    GErrorHolder() = default;
    GErrorHolder(const GErrorHolder&) = delete;
    GErrorHolder& operator=(const GErrorHolder&) = delete;
    ~GErrorHolder() { g_clear_error(&error); }
};

using GAttributes = std::unique_ptr<GHashTable, decltype(&g_hash_table_unref)>;

GAttributes makeAttributes(const Attributes& attributes)
{
    GAttributes table(g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free), g_hash_table_unref);
    for (auto it = attributes.begin(); it != attributes.end(); ++it)
        g_hash_table_insert(table.get(),
            g_strdup(it.key().toUtf8().constData()),
            g_strdup(it.value().toUtf8().constData()));
    return table;
}

Answer failure(const GErrorHolder& holder)
{
    // libsecret goes on asking the daemon it once met, by an address that a restarted one does not have.
    secret_service_disconnect();
    const GError* error = holder.error;
    const QString text = error ? QString::fromUtf8(error->message) : QString();
    if (error && error->domain == SECRET_ERROR && error->code == SECRET_ERROR_IS_LOCKED)
        return { Status::Locked, {}, {}, text };
    // Errors of the bus itself mean that nobody provides the service, or that it went away.
    const bool isBusError = error && (error->domain == G_DBUS_ERROR || error->domain == G_IO_ERROR);
    return { isBusError ? Status::Unavailable : Status::Failed, {}, {}, text };
}

/// Whether a session bus can be reached where GDBus looks for one. Without, it would start one of its own
/// through dbus-launch, which takes seconds and has no keyring on it.
bool hasSessionBus()
{
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        || QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
}

GRef<SecretService> service(GErrorHolder& error)
{
    if (!hasSessionBus()) {
        g_set_error_literal(&error.error, G_IO_ERROR, G_IO_ERROR_NOT_FOUND, "there is no session bus");
        return nullptr;
    }
    return GRef<SecretService>(
        secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, cancellable(), &error.error));
}

GRef<SecretCollection> defaultKeyring(SecretService* secrets, GErrorHolder& error)
{
    return GRef<SecretCollection>(secret_collection_for_alias_sync(secrets,
        SECRET_COLLECTION_DEFAULT,
        SECRET_COLLECTION_NONE,
        cancellable(),
        &error.error));
}

GRef<SecretItem> firstItem(SecretService* secrets, const Attributes& attributes, GErrorHolder& error)
{
    // Without SECRET_SEARCH_UNLOCK: a locked item is found all the same, and nobody is asked for a password.
    GList* items = secret_service_search_sync(secrets,
        nullptr,
        makeAttributes(attributes).get(),
        SECRET_SEARCH_NONE,
        cancellable(),
        &error.error);
    GRef<SecretItem> first(items ? SECRET_ITEM(g_object_ref(items->data)) : nullptr);
    g_list_free_full(items, g_object_unref);
    return first;
}

QString pathOf(SecretItem* item)
{
    return QString::fromUtf8(g_dbus_proxy_get_object_path(G_DBUS_PROXY(item)));
}

Answer lookUpNow(const Attributes& attributes)
{
    GErrorHolder error;
    const GRef<SecretService> secrets = service(error);
    if (!secrets)
        return failure(error);
    const GRef<SecretItem> item = firstItem(secrets.get(), attributes, error);
    if (error.error)
        return failure(error);
    if (!item)
        return { Status::NotFound, {}, {}, QStringLiteral("there is no such item") };
    const QString path = pathOf(item.get());
    if (secret_item_get_locked(item.get()))
        return { Status::Locked, {}, path, QStringLiteral("the keyring is locked") };
    if (!secret_item_load_secret_sync(item.get(), cancellable(), &error.error))
        return failure(error);
    SecretValue* value = secret_item_get_secret(item.get());
    gsize length = 0;
    const gchar* bytes = secret_value_get(value, &length);
    Answer answer { Status::Done, QString::fromUtf8(bytes, static_cast<qsizetype>(length)), path, {} };
    secret_value_unref(value);
    return answer;
}

Answer storeNow(const Attributes& attributes, const QString& label, const QString& password)
{
    GErrorHolder error;
    const GRef<SecretService> secrets = service(error);
    if (!secrets)
        return failure(error);
    const GRef<SecretCollection> keyring = defaultKeyring(secrets.get(), error);
    if (error.error)
        return failure(error);
    // Storing into a locked keyring would wait for the user's password.
    if (keyring && secret_collection_get_locked(keyring.get()))
        return { Status::Locked, {}, {}, QStringLiteral("the keyring is locked") };
    const QByteArray bytes = password.toUtf8();
    SecretValue* value = secret_value_new(bytes.constData(), bytes.size(), "text/plain");
    const bool isStored = secret_service_store_sync(secrets.get(),
        nullptr,
        makeAttributes(attributes).get(),
        SECRET_COLLECTION_DEFAULT,
        label.toUtf8().constData(),
        value,
        cancellable(),
        &error.error);
    secret_value_unref(value);
    return isStored ? Answer { Status::Done, password, {}, {} } : failure(error);
}

/// Runs the change on the item at the path.
template <class Change>
Answer changeItem(const QString& path, Change change)
{
    GErrorHolder error;
    const GRef<SecretService> secrets = service(error);
    if (!secrets)
        return failure(error);
    const GRef<SecretItem> item(secret_item_new_for_dbus_path_sync(secrets.get(),
        path.toUtf8().constData(),
        SECRET_ITEM_NONE,
        cancellable(),
        &error.error));
    if (!item || error.error)
        return failure(error);
    if (secret_item_get_locked(item.get()))
        return { Status::Locked, {}, path, QStringLiteral("the keyring is locked") };
    return change(item.get(), &error.error) ? Answer { Status::Done, {}, path, {} } : failure(error);
}

Answer changeAttribute(const QString& path, const QString& name, const QString& value)
{
    return changeItem(path, [&](SecretItem* item, GError** error) {
        const GAttributes attributes(secret_item_get_attributes(item), g_hash_table_unref);
        g_hash_table_replace(attributes.get(),
            g_strdup(name.toUtf8().constData()),
            g_strdup(value.toUtf8().constData()));
        // No schema of libsecret's own: it would refuse names it does not know.
        return secret_item_set_attributes_sync(item, nullptr, attributes.get(), cancellable(), error);
    });
}

Answer removeNow(const Attributes& attributes)
{
    GErrorHolder error;
    const GRef<SecretService> secrets = service(error);
    if (!secrets)
        return failure(error);
    // Clearing passes over what is locked as if it were not there.
    const GRef<SecretItem> item = firstItem(secrets.get(), attributes, error);
    if (item && secret_item_get_locked(item.get()))
        return { Status::Locked, {}, pathOf(item.get()), QStringLiteral("the keyring is locked") };
    if (error.error)
        return failure(error);
    const bool isRemoved = secret_service_clear_sync(secrets.get(),
        nullptr,
        makeAttributes(attributes).get(),
        cancellable(),
        &error.error);
    if (error.error)
        return failure(error);
    return { isRemoved ? Status::Done : Status::NotFound, {}, {}, {} };
}

/// What a lock is of: the item, which stands for the keyring that it lies in, or the default keyring when there
/// is none.
GRef<GDBusProxy> lockable(SecretService* secrets, const QString& item, GErrorHolder& error)
{
    if (item.isEmpty())
        return GRef<GDBusProxy>(G_DBUS_PROXY(defaultKeyring(secrets, error).release()));
    return GRef<GDBusProxy>(G_DBUS_PROXY(secret_item_new_for_dbus_path_sync(secrets,
        item.toUtf8().constData(),
        SECRET_ITEM_NONE,
        cancellable(),
        &error.error)));
}

Answer askWhetherOpen(const QString& item)
{
    GErrorHolder error;
    const GRef<SecretService> secrets = service(error);
    if (!secrets)
        return failure(error);
    const GRef<GDBusProxy> target = lockable(secrets.get(), item, error);
    if (!target)
        return failure(error);
    const bool isLocked = SECRET_IS_ITEM(target.get())
        ? secret_item_get_locked(SECRET_ITEM(target.get()))
        : secret_collection_get_locked(SECRET_COLLECTION(target.get()));
    return { isLocked ? Status::Locked : Status::Done, {}, {}, {} };
}

/// Locks the default keyring, or unlocks the item's, which waits for the user.
Answer setLocked(bool isLocked, const QString& item, GCancellable* cancellable)
{
    GErrorHolder error;
    const GRef<SecretService> secrets = service(error);
    if (!secrets)
        return failure(error);
    const GRef<GDBusProxy> target = lockable(secrets.get(), item, error);
    if (!target)
        return failure(error);
    GList* objects = g_list_append(nullptr, target.get());
    const gint count = isLocked
        ? secret_service_lock_sync(secrets.get(), objects, cancellable, nullptr, &error.error)
        : secret_service_unlock_sync(secrets.get(), objects, cancellable, nullptr, &error.error);
    g_list_free(objects);
    return count > 0 ? Answer { Status::Done, {}, {}, {} } : failure(error);
}

/// Calls given to a thread of their own, one after the other, so that whoever asks can stop waiting. The
/// thread lives until the process ends.
class Worker {
public:
    static Worker& shared()
    {
        static auto* worker = new Worker;
        return *worker;
    }

    Answer ask(std::function<Answer()> call)
    {
        struct Pending {
            std::mutex lock;
            std::condition_variable done;
            std::optional<Answer> answer;
        };
        // One unanswered call is waited for; while it is still out, nobody else waits behind it.
        if (m_isStuck)
            return { Status::Unavailable, {}, {}, QStringLiteral("the Secret Service does not answer") };
        const auto pending = std::make_shared<Pending>();
        _append([this, pending, call = std::move(call)] {
            Answer answer = call();
            const bool mayHaveBeenRestarted
                = answer.status == Status::Failed || answer.status == Status::Unavailable;
            if (mayHaveBeenRestarted && !m_isStuck)
                answer = call();
            std::scoped_lock guard(pending->lock);
            // Under the lock, as is giving up: whichever comes second counts.
            m_isStuck = false;
            pending->answer = std::move(answer);
            pending->done.notify_one();
        });
        std::unique_lock guard(pending->lock);
        if (pending->done.wait_for(guard, KRSecretService::answerLimit(), [&] {
                return pending->answer.has_value();
            }))
            return *pending->answer;
        m_isStuck = true;
        return { Status::Unavailable, {}, {}, QStringLiteral("the Secret Service did not answer in time") };
    }

    void stop()
    {
        _append({});
        m_thread.join();
        // Who asks all the same need not wait for nobody.
        m_isStuck = true;
    }

private:
    Worker()
        : m_thread([this] { _run(); })
    {
    }

    void _append(std::function<void()> call)
    {
        std::scoped_lock guard(m_lock);
        m_calls.push_back(std::move(call));
        m_wakeUp.notify_one();
    }

    void _run()
    {
        for (;;) {
            std::unique_lock guard(m_lock);
            m_wakeUp.wait(guard, [this] { return !m_calls.empty(); });
            const std::function<void()> call = std::move(m_calls.front());
            m_calls.pop_front();
            guard.unlock();
            if (!call)
                return;
            call();
        }
    }

    std::mutex m_lock;
    std::condition_variable m_wakeUp;
    std::deque<std::function<void()>> m_calls;
    std::atomic<bool> m_isStuck = false;
    std::thread m_thread;
};

/// One prompt at a time, and whom its end is told. Main thread; the prompt itself is waited for on a thread
/// apart from the worker, since it may stay open for hours while look-ups go on.
class Unlocking {
public:
    static Unlocking& shared()
    {
        static auto* unlocking = new Unlocking;
        return *unlocking;
    }

    void join(const QString& item, std::function<void(bool isUnlocked)> finished)
    {
        if (!m_finished) {
            m_finished = std::move(finished);
            m_item = item;
            _ask();
        } else if (Worker::shared().ask([asked = m_item] { return askWhetherOpen(asked); }).status
            == Status::Done) {
            // Opened in another way, while a prompt that nobody answers is still up. Told later, since
            // whoever joins may be in the middle of a look-up.
            KRRunLoop::main().post([this, prompt = m_prompt] { _end(prompt, true); });
        }
    }

    void stop()
    {
        if (m_prompt)
            g_cancellable_cancel(m_prompt.get());
        if (m_thread.joinable())
            m_thread.join();
    }

private:
    using Prompt = std::shared_ptr<GCancellable>;

    void _ask()
    {
        stop();
        m_prompt = Prompt(g_cancellable_new(), GObjectDeleter());
        m_thread = std::thread([this, item = m_item, prompt = m_prompt] {
            const bool isUnlocked = setLocked(false, item, prompt.get()).status == Status::Done;
            KRRunLoop::main().post([this, prompt, isUnlocked] { _end(prompt, isUnlocked); });
        });
    }

    void _end(const Prompt& prompt, bool isUnlocked)
    {
        // It may have ended in the other way already.
        if (prompt != m_prompt)
            return;
        g_cancellable_cancel(prompt.get());
        m_prompt = nullptr;
        std::exchange(m_finished, nullptr)(isUnlocked);
    }

    std::function<void(bool)> m_finished;
    QString m_item;
    Prompt m_prompt;
    std::thread m_thread;
};

KRClock::Duration s_answerLimit = std::chrono::seconds(3);

} // namespace

namespace KRSecretService {

KRClock::Duration answerLimit()
{
    return s_answerLimit;
}

void setAnswerLimit(KRClock::Duration limit)
{
    s_answerLimit = limit;
}

Answer lookUp(const Attributes& attributes)
{
    return Worker::shared().ask([attributes] { return lookUpNow(attributes); });
}

Answer store(const Attributes& attributes, const QString& label, const QString& password)
{
    return Worker::shared().ask([=] { return storeNow(attributes, label, password); });
}

Answer setPassword(const QString& item, const QString& password)
{
    return Worker::shared().ask([=] {
        return changeItem(item, [&](SecretItem* target, GError** error) {
            const QByteArray bytes = password.toUtf8();
            SecretValue* value = secret_value_new(bytes.constData(), bytes.size(), "text/plain");
            const bool isSet = secret_item_set_secret_sync(target, value, cancellable(), error);
            secret_value_unref(value);
            return isSet;
        });
    });
}

Answer setAttribute(const QString& item, const QString& name, const QString& value)
{
    return Worker::shared().ask([=] { return changeAttribute(item, name, value); });
}

Answer setLabel(const QString& item, const QString& label)
{
    return Worker::shared().ask([=] {
        return changeItem(item, [&](SecretItem* target, GError** error) {
            return secret_item_set_label_sync(target, label.toUtf8().constData(), cancellable(), error)
                != FALSE;
        });
    });
}

Answer remove(const Attributes& attributes)
{
    return Worker::shared().ask([=] { return removeNow(attributes); });
}

Answer lock()
{
    return Worker::shared().ask([] { return setLocked(true, {}, cancellable()); });
}

void unlockInBackground(const QString& item, std::function<void(bool isUnlocked)> finished)
{
    Unlocking::shared().join(item, std::move(finished));
}

void stop()
{
    g_cancellable_cancel(cancellable());
    Worker::shared().stop();
    Unlocking::shared().stop();
}

} // namespace KRSecretService

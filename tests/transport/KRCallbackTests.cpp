#include "support/KRTest.h"
#include "transport/KRBackgroundProxy.h"
#include "transport/KRCallback.h"

namespace {

struct Target {
    QStringList calls;
    std::thread::id thread;

    ~Target() { dissociateWeakProxy(this); }
    void took(KRResult<int> result, QString info)
    {
        thread = std::this_thread::get_id();
        calls.append(
            u"%1 %2"_s.arg(result.isError() ? result.error().description : QString::number(result.value()),
                info));
    }
    void tookWithoutInfo(const KRResult<int>& result) { calls.append(QString::number(result.value())); }
    void tookItself(QString& text, int info) { text.append(QString::number(info)); }
    void note(int number) { calls.append(QString::number(number)); }
    int compute(int number) { return number * 2; }
    void act(std::atomic<bool>* done) { *done = true; }
};

} // namespace

TEST(KRCallback, InvokesMethodWithResultAndInfo)
{
    const auto target = std::make_shared<Target>();
    const KRCallback<int> callback = Callback(target, &Target::took, u"info"_s);
    callback.invoke(1);
    callback.invoke(errorWithDomain(u"domain"_s, 2, u"broken"_s));
    Callback(target, &Target::tookWithoutInfo).invoke(3);
    EXPECT_EQ(target->calls, (QStringList { u"1 info"_s, u"broken info"_s, u"3"_s }));

    QString lent = u"lent "_s;
    Callback(target, &Target::tookItself, 7).invoke(lent);
    EXPECT_EQ(lent, u"lent 7"_s);

    KRCallback<int>().invoke(1);
    Callback(std::shared_ptr<Target>(), &Target::took, u"nobody"_s).invoke(1);
}

TEST(KRCallback, KeepsItsTargetUntilItIsDissociated)
{
    auto target = std::make_shared<Target>();
    const std::weak_ptr<Target> watched = target;
    const KRCallback<int> callback = Callback(std::move(target), &Target::took, u""_s);
    const KRCallback<int> copy = callback;
    EXPECT_FALSE(watched.expired());
    copy.dissociateTarget();
    EXPECT_TRUE(watched.expired());
    callback.invoke(1);
}

TEST(KRMainThreadProxy, PostsInOrderAndNeverRunsInline)
{
    const auto target = std::make_shared<Target>();
    const KRMainThreadProxy<Target> proxy = mainThreadProxy(target);
    proxy.perform(&Target::note, 1);
    std::thread([&] {
        proxy.perform(&Target::note, 2);
        Callback(proxy, &Target::took, u"info"_s).invoke(3);
    }).join();
    EXPECT_TRUE(target->calls.isEmpty());
    EXPECT_TRUE(KRWaitUntil([&] { return target->calls.size() == 3; }));
    EXPECT_EQ(target->calls, (QStringList { u"1"_s, u"2"_s, u"3 info"_s }));
    EXPECT_EQ(target->thread, std::this_thread::get_id());
}

TEST(KRWeakProxy, ReachesTheObjectOnlyWhileItIsThere)
{
    auto target = std::make_shared<Target>();
    const KRWeakProxy<Target> proxy = weakProxy(target);
    EXPECT_EQ(proxy, weakProxy(target));
    proxy.perform(&Target::note, 1);
    EXPECT_EQ(target->calls.size(), 1);

    dissociateWeakProxy(target.get());
    proxy.perform(&Target::note, 2);
    EXPECT_EQ(target->calls.size(), 1);
    const KRWeakProxy<Target> fresh = weakProxy(target);
    EXPECT_FALSE(fresh == proxy);
    fresh.perform(&Target::note, 3);
    EXPECT_EQ(target->calls.size(), 2);

    const size_t known = KRWeakMap::shared().count();
    const KRWeakMainThreadProxy<Target> later = weakMainThreadProxy(target);
    later.perform(&Target::note, 4);
    target.reset();
    EXPECT_EQ(KRWeakMap::shared().count(), known - 1);
    KRRunLoop::main().runPending();
    EXPECT_EQ(fresh.proxiedObject(), nullptr);
}

TEST(KRBackgroundProxy, RunsOneCallOnAThreadOfItsOwn)
{
    KRTestLog log;
    const auto target = std::make_shared<Target>();
    const auto proxy = backgroundProxy(target);
    std::atomic<bool> done = false;
    proxy->perform(&Target::act, &done);
    EXPECT_TRUE(KRWaitUntil([&] { return done.load(); }));
    EXPECT_EQ(proxy->perform(&Target::compute, 1), nullptr);
    EXPECT_TRUE(log.contains(u"WARNING: trying to invoke on an stale background proxy"_s));

    // The result may come before the callback is attached, and is lost then; so try until one is in time.
    const auto receiver = std::make_shared<Target>();
    EXPECT_TRUE(KRWaitUntil([&] {
        const auto result = backgroundProxy(target)->perform(&Target::compute, 21);
        result->callback(Callback(mainThreadProxy(receiver), &Target::took, u"doubled"_s)).cancel();
        return receiver->calls.contains(u"42 doubled"_s);
    }));
    EXPECT_TRUE(log.contains(u"need to implement cancelling"_s));
}

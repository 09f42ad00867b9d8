#include "platform/appearance/KRDesktopAppearance.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "support/KRTest.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QTest>

#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using SettingsGroups = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(SettingsGroups)

/// A settings portal on a connection of its own.
class FakePortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    FakePortal()
    {
        qDBusRegisterMetaType<SettingsGroups>();
        EXPECT_TRUE(m_bus.registerObject(u"/org/freedesktop/portal/desktop"_s,
            this,
            QDBusConnection::ExportAllSlots));
        EXPECT_TRUE(m_bus.registerService(u"org.freedesktop.portal.Desktop"_s));
    }
    ~FakePortal() override { QDBusConnection::disconnectFromBus(u"portal"_s); }

    void change(const QString& group, const QString& key, const QVariant& value)
    {
        QDBusMessage signal = QDBusMessage::createSignal(u"/org/freedesktop/portal/desktop"_s,
            u"org.freedesktop.portal.Settings"_s,
            u"SettingChanged"_s);
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        m_bus.send(signal);
    }

    SettingsGroups settings;
    bool answersNonsense = false;
    int questions = 0;

public Q_SLOTS:
    SettingsGroups ReadAll(const QStringList& groups)
    {
        ++questions;
        EXPECT_EQ(groups.size(), 3);
        if (answersNonsense) {
            setDelayedReply(true);
            m_bus.send(message().createReply(u"nonsense"_s));
        }
        return settings;
    }

private:
    QDBusConnection m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
};

namespace {

constexpr int Limit = 20000;
const QString Appearance = u"org.freedesktop.appearance"_s;
const QString ReducedMotion = u"reduced-motion"_s;
const QString Interface = u"org.gnome.desktop.interface"_s;
const QString EnableAnimations = u"enable-animations"_s;

class KRDesktopAppearanceTests : public testing::Test {
protected:
    void follow()
    {
        setting = std::make_unique<KRDesktopAppearance>([this](const auto& wishes) {
            told.append(wishes.reducesMotion);
            raisesContrast = wishes.raisesContrast;
        });
    }
    bool waitForTold(const QList<bool>& expected)
    {
        return QTest::qWaitFor([&] { return told == expected; }, Limit);
    }

    KRQtRunLoopDriver driver;
    QList<bool> told;
    bool raisesContrast = false;
    std::unique_ptr<KRDesktopAppearance> setting;
};

TEST_F(KRDesktopAppearanceTests, TheWishAndItsChangesArrive)
{
    FakePortal portal;
    portal.settings[Interface][EnableAnimations] = false;
    portal.settings[Interface][u"font-name"_s] = u"Sans 10"_s;
    follow();
    EXPECT_TRUE(told.isEmpty());
    EXPECT_TRUE(waitForTold({ true }));
    portal.change(Interface, EnableAnimations, true);
    EXPECT_TRUE(waitForTold({ true, false }));
    // What all desktops have in common counts for more.
    portal.change(Appearance, ReducedMotion, 1U);
    EXPECT_TRUE(waitForTold({ true, false, true }));
    portal.change(Interface, EnableAnimations, true);
    portal.change(Appearance, ReducedMotion, u"not a number"_s);
    portal.change(Appearance, ReducedMotion, 0U);
    EXPECT_TRUE(waitForTold({ true, false, true, false }));

    const QString accessibility = u"org.gnome.desktop.a11y.interface"_s;
    portal.change(accessibility, u"high-contrast"_s, true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return raisesContrast; }, Limit));
    portal.change(Appearance, u"contrast"_s, 0U);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !raisesContrast; }, Limit));
    EXPECT_FALSE(told.last()) << "the one wish says nothing of the other";
}

TEST_F(KRDesktopAppearanceTests, StrangeAnswersAreIgnored)
{
    FakePortal portal;
    portal.answersNonsense = true;
    follow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return portal.questions == 1; }, Limit));
    portal.change(Appearance, ReducedMotion, 1U);
    EXPECT_TRUE(waitForTold({ true }));
}

// What a program does whose session bus takes the call and then says nothing. Answers an exit code.
int runWithSilentBus()
{
    QTemporaryDir directory;
    const QByteArray path = directory.filePath(u"bus"_s).toLocal8Bit();
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0
        || listen(listener, 1) != 0)
        return 1;
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path);

    bool hasBeenTold = false;
    auto setting = std::make_unique<KRDesktopAppearance>([&](const auto&) { hasBeenTold = true; });
    pollfd waiting { listener, POLLIN, 0 };
    if (poll(&waiting, 1, Limit) != 1)
        return 2;
    // Somebody has called at the bus, and this thread is free.
    bool hasRun = false;
    KRRunLoop::main().post([&] { hasRun = true; });
    if (!QTest::qWaitFor([&] { return hasRun; }, Limit))
        return 3;
    setting.reset();
    return hasBeenTold ? 4 : 0;
}

TEST_F(KRDesktopAppearanceTests, ABusThatNeverAnswersHoldsNothingUp)
{
    // In a process of its own: the address of the bus is read once.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(_exit(runWithSilentBus()), testing::ExitedWithCode(0), "");
}

} // namespace

#include "KRDesktopAppearanceTests.moc"

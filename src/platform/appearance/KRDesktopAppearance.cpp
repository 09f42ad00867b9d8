#include "platform/appearance/KRDesktopAppearance.h"

#include "foundation/KRRunLoop.h"
#include "platform/appearance/KRSettingsPortal.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <thread>

namespace {

using Groups = QMap<QString, QVariantMap>;

const QString ConnectionName = QStringLiteral("settings");
const QString PortalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString PortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString SettingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

const QString AppearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString ReducedMotionKey = QStringLiteral("reduced-motion");
const QString InterfaceGroup = QStringLiteral("org.gnome.desktop.interface");
const QString EnableAnimationsKey = QStringLiteral("enable-animations");
const QString ContrastKey = QStringLiteral("contrast");
const QString AccessibilityGroup = QStringLiteral("org.gnome.desktop.a11y.interface");
const QString HighContrastKey = QStringLiteral("high-contrast");

} // namespace

KRDesktopAppearance::KRDesktopAppearance(Handler handler)
    : m_portal(std::make_shared<Portal>(std::move(handler)))
{
    // Connecting waits for the bus to answer, which may take a while, so a thread of its own does it. Nobody
    // waits for that thread.
    std::thread([weakPortal = std::weak_ptr<Portal>(m_portal)] {
        const QDBusConnection connection
            = QDBusConnection::connectToBus(QDBusConnection::SessionBus, ConnectionName);
        if (!connection.isConnected())
            return;
        KRRunLoop::main().post([weakPortal, connection] {
            if (const std::shared_ptr<Portal> portal = weakPortal.lock())
                portal->follow(connection);
        });
    }).detach();
}

KRDesktopAppearance::~KRDesktopAppearance() = default;

void KRDesktopAppearance::Portal::follow(const QDBusConnection& connection)
{
    QDBusConnection bus = connection;
    // A slot with a parameter of a type that Qt has not met yet cannot be connected.
    qRegisterMetaType<QDBusVariant>();
    // From any sender: with a name Qt would first ask the bus who owns it, and wait for the answer.
    bus.connect(QString(),
        PortalPath,
        SettingsInterface,
        QStringLiteral("SettingChanged"),
        this,
        SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(PortalService,
        PortalPath,
        SettingsInterface,
        QStringLiteral("ReadAll"));
    question << QStringList { AppearanceGroup, InterfaceGroup, AccessibilityGroup };
    auto* const call = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        _allSettingsDidArrive(*call);
        call->deleteLater();
    });
}

void KRDesktopAppearance::Portal::_allSettingsDidArrive(QDBusPendingCallWatcher& call)
{
    const QDBusMessage reply = call.reply();
    // Whatever else has that name on the bus may answer anything.
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"a{sa{sv}}")
        return;
    const Groups groups = qdbus_cast<Groups>(reply.arguments().constFirst());
    for (auto group = groups.begin(); group != groups.end(); ++group) {
        for (auto setting = group->begin(); setting != group->end(); ++setting)
            _takeSetting(group.key(), setting.key(), setting.value());
    }
    _tell();
}

void KRDesktopAppearance::Portal::settingChanged(const QString& group,
    const QString& key,
    const QDBusVariant& value)
{
    _takeSetting(group, key, value.variant());
    _tell();
}

void KRDesktopAppearance::Portal::_takeSetting(const QString& group,
    const QString& key,
    const QVariant& value)
{
    if (group == AppearanceGroup && key == ReducedMotionKey && value.typeId() == QMetaType::UInt)
        m_isReduced = value.toUInt() == 1;
    else if (group == InterfaceGroup && key == EnableAnimationsKey && value.typeId() == QMetaType::Bool)
        m_animationsAreEnabled = value.toBool();
    else if (group == AppearanceGroup && key == ContrastKey && value.typeId() == QMetaType::UInt)
        m_isRaised = value.toUInt() == 1;
    else if (group == AccessibilityGroup && key == HighContrastKey && value.typeId() == QMetaType::Bool)
        m_isHighContrast = value.toBool();
}

void KRDesktopAppearance::Portal::_tell()
{
    const Wishes wishes { m_isReduced.value_or(!m_animationsAreEnabled.value_or(true)),
        m_isRaised.value_or(m_isHighContrast.value_or(false)) };
    if (wishes == m_told)
        return;
    m_told = wishes;
    m_handler(wishes);
}

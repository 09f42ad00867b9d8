#include "LocalService.h"

#include "Certificates.h"
#include "Community.h"
#include "Files.h"
#include "FolderLock.h"
#include "HttpListener.h"
#include "OutsideRoutes.h"
#include "RestRoutes.h"
#include "ServicesFile.h"
#include "WebPages.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <filesystem>

namespace localservice {

namespace {

void removeStoredData(const std::string& directory)
{
    std::error_code error;
    for (const char* name : { "/service.sqlite", "/service.sqlite-wal", "/service.sqlite-shm", "/media" })
        std::filesystem::remove_all(directory + name, error);
}

} // namespace

struct LocalService::Private {
    Site site;
    Router router { site };
    HttpListener http { router };
    HttpListener https { router };
    Certificates certificates;
    FolderLock lock;
    std::string failure;

    bool fail(std::string why)
    {
        failure = std::move(why);
        return false;
    }

    bool openData(const LocalServiceOptions& options);
    bool openListeners(const LocalServiceOptions& options, RunningService& running);
    void adoptPorts(int httpPort, int httpsPort);
    void addRoutes();
};

bool LocalService::Private::openData(const LocalServiceOptions& options)
{
    const std::string& directory = options.dataDirectory;
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    std::filesystem::permissions(directory, std::filesystem::perms::owner_all, error);
    if (error)
        return fail("cannot use the folder " + directory + ": " + error.message());
    if (!lock.take(directory))
        return fail("another service is using the folder " + directory);
    if (options.startsFresh)
        removeStoredData(directory);
    site.dataDirectory = directory;
    if (!site.database.open(directory + "/service.sqlite"))
        return fail("cannot open the data: " + site.database.takeFailure());
    auto made = ensureCertificates(directory);
    if (!made)
        return fail("cannot write certificates to " + directory);
    certificates = std::move(*made);
    return drawPortraits(directory) || fail("cannot write portraits to " + directory);
}

bool LocalService::Private::openListeners(const LocalServiceOptions& options, RunningService& running)
{
    https.setCertificate(certificates.serverFile, certificates.serverKeyFile);
    running.httpPort = http.open(options.httpPort);
    running.httpsPort = https.open(options.httpsPort);
    if (running.httpPort == 0)
        return fail("port " + std::to_string(options.httpPort) + " is not free");
    if (running.httpsPort == 0)
        return fail("port " + std::to_string(options.httpsPort) + " is not free");
    return true;
}

// Texts hold links into this service. When the ports are others than last time, the links move along.
void LocalService::Private::adoptPorts(int httpPort, int httpsPort)
{
    const auto databaseLock = site.database.lock();
    site.addresses.http = "http://127.0.0.1:" + std::to_string(httpPort);
    site.addresses.https = "https://127.0.0.1:" + std::to_string(httpsPort);
    const std::pair<const char*, std::string> bases[]
        = { { "httpBase", site.addresses.http }, { "httpsBase", site.addresses.https } };
    for (const auto& [key, base] : bases) {
        const std::string before = site.database.value(key);
        if (before == base)
            continue;
        Transaction transaction(site.database);
        if (!before.empty())
            site.statuses.rebaseLinks(before + "/", base + "/");
        site.database.setValue(key, base);
        transaction.commit();
    }
}

void LocalService::Private::addRoutes()
{
    addTimelineRoutes(router, site);
    addStatusRoutes(router, site);
    addDirectMessageRoutes(router, site);
    addPeopleRoutes(router, site);
    addFriendshipRoutes(router, site);
    addAccountRoutes(router, site);
    addSearchRoutes(router, site);
    addShortLinkRoutes(router, site);
    addMediaRoutes(router, site);
    addLongPostRoutes(router, site);
    addPictureRoutes(router, site);
    addWebPages(router, site);
}

LocalService::LocalService() = default;

LocalService::~LocalService()
{
    stop();
}

const std::string& LocalService::failure() const
{
    static const std::string none;
    return m_private ? m_private->failure : none;
}

bool LocalService::prepare(const LocalServiceOptions& options)
{
    stop();
    m_private = std::make_unique<Private>();
    if (!m_private->openData(options))
        return false;
    Site& site = m_private->site;
    if (site.users.all().empty()) {
        m_private->adoptPorts(options.httpPort, options.httpsPort);
        addCommunity(site, currentTime());
    }
    const std::string problem = site.database.takeFailure();
    return problem.empty() || m_private->fail("cannot fill the data: " + problem);
}

std::optional<RunningService> LocalService::start(const LocalServiceOptions& options)
{
    RunningService running;
    if (!prepare(options) || !m_private->openListeners(options, running))
        return std::nullopt;
    Site& site = m_private->site;
    m_private->adoptPorts(running.httpPort, running.httpsPort);
    running.dataDirectory = options.dataDirectory;
    running.authorityFile = m_private->certificates.authorityFile;
    running.servicesFile = options.dataDirectory + "/services.ini";
    for (const User& user : site.users.all())
        running.accounts.push_back({ user.screenName, user.password });
    const std::string problem = site.database.takeFailure();
    if (!problem.empty()
        || !writeFile(running.servicesFile, servicesFileFor(running.httpPort, running.httpsPort))) {
        m_private->fail(problem.empty() ? "cannot write " + running.servicesFile : problem);
        return std::nullopt;
    }
    m_private->addRoutes();
    m_private->http.start();
    m_private->https.start();
    return running;
}

void LocalService::stop()
{
    if (!m_private)
        return;
    m_private->http.stop();
    m_private->https.stop();
    m_private.reset();
}

std::string RunningService::description() const
{
    const auto text = [](const std::string& string) { return QString::fromStdString(string); };
    QJsonArray list;
    for (const Account& account : accounts)
        list.append(QJsonObject { { QStringLiteral("username"), text(account.username) },
            { QStringLiteral("password"), text(account.password) } });
    const QJsonObject object { { QStringLiteral("http"),
                                   text("http://127.0.0.1:" + std::to_string(httpPort)) },
        { QStringLiteral("https"), text("https://127.0.0.1:" + std::to_string(httpsPort)) },
        { QStringLiteral("caFile"), text(authorityFile) },
        { QStringLiteral("servicesFile"), text(servicesFile) },
        { QStringLiteral("dataDirectory"), text(dataDirectory) },
        { QStringLiteral("accounts"), list } };
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace localservice

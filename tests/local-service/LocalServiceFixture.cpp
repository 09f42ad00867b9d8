#include "LocalServiceFixture.h"

#include <QString>
#include <QXmlStreamReader>

using namespace localservice;

ServiceUnderTest::ServiceUnderTest()
    : m_directory(m_folder.path().toStdString())
{
}

ServiceUnderTest::~ServiceUnderTest()
{
    m_service.stop();
}

void ServiceUnderTest::restart(bool startsFresh)
{
    const auto running = m_service.start({ m_directory, 0, 0, startsFresh });
    ASSERT_TRUE(running) << m_service.failure();
    m_running = *running;
}

std::vector<std::string> Reply::texts(const std::string& parent, const std::string& name) const
{
    QXmlStreamReader reader(QByteArray::fromStdString(body));
    std::vector<QString> open;
    std::vector<std::string> found;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            open.push_back(reader.qualifiedName().toString());
            if (open.size() >= 2 && open.back() == QString::fromStdString(name)
                && open[open.size() - 2] == QString::fromStdString(parent)) {
                found.push_back(reader.readElementText(QXmlStreamReader::IncludeChildElements).toStdString());
                open.pop_back();
            }
        } else if (token == QXmlStreamReader::EndElement) {
            open.pop_back();
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString() << "\n" << body.substr(0, 400);
    return found;
}

std::string Reply::text(const std::string& parent, const std::string& name) const
{
    const auto all = texts(parent, name);
    return all.empty() ? std::string() : all.front();
}

std::vector<long long> Reply::ids(const std::string& parent) const
{
    std::vector<long long> ids;
    for (const std::string& text : texts(parent, "id"))
        ids.push_back(std::stoll(text));
    return ids;
}

Caller::Caller(const ServiceUnderTest& service, const std::string& username, const std::string& password)
    : m_client(std::make_shared<httplib::SSLClient>("127.0.0.1", service.running().httpsPort))
{
    m_client->set_ca_cert_path(service.running().authorityFile.c_str());
    m_client->enable_server_certificate_verification(true);
    m_client->set_keep_alive(true);
    m_client->set_tcp_nodelay(true);
    if (!username.empty())
        m_client->set_basic_auth(username, password);
}

Reply replyOf(const httplib::Result& result)
{
    EXPECT_TRUE(result) << "no answer: " << httplib::to_string(result.error());
    return result ? Reply { result->status, result->body, result->headers } : Reply {};
}

Reply Caller::get(const std::string& path)
{
    return replyOf(m_client->Get(path));
}

Reply Caller::post(const std::string& path, const httplib::Params& parameters)
{
    return replyOf(m_client->Post(path, parameters));
}

Reply Caller::postBody(const std::string& path, const std::string& body, const std::string& contentType)
{
    return replyOf(m_client->Post(path, body, contentType));
}

long long Caller::update(const std::string& text, long long inReplyTo)
{
    httplib::Params parameters { { "status", text }, { "source", "pelinor" } };
    if (inReplyTo != 0)
        parameters.emplace("in_reply_to_status_id", std::to_string(inReplyTo));
    const Reply reply = post("/statuses/update.xml", parameters);
    EXPECT_EQ(reply.status, 200) << reply.body;
    const auto ids = reply.ids();
    return ids.empty() ? 0 : ids.front();
}

std::unique_ptr<ServiceUnderTest> LocalServiceTest::s_service;

void LocalServiceTest::SetUpTestSuite()
{
    s_service = std::make_unique<ServiceUnderTest>();
    s_service->start();
}

void LocalServiceTest::TearDownTestSuite()
{
    s_service.reset();
}

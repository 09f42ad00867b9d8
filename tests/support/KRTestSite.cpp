#include "support/KRTestSite.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>

#include <gtest/gtest.h>

KRTestSite::KRTestSite()
    : m_server(
        [this](const KRTestServer::Request& request, KRTestServer::Connection& connection) {
            const QByteArray path = request.target.split('?').value(0);
            AnswerFunction function;
            {
                std::scoped_lock guard(m_lock);
                function = m_answers.value(path);
            }
            if (!function) {
                ADD_FAILURE() << "nobody expected " << request.method.toStdString() << ' '
                              << request.target.toStdString();
                connection.respond(404, {});
                return;
            }
            const Answer answer = function(request);
            connection.respond(answer.status,
                answer.body,
                "Content-Type: application/xml; charset=utf-8\r\n");
        },
        KRTestCertificate::Good)
{
}

void KRTestSite::answer(const QByteArray& path, AnswerFunction function)
{
    std::scoped_lock guard(m_lock);
    m_answers[path] = std::move(function);
}

void KRTestSite::answer(const QByteArray& path, const QByteArray& body, int status)
{
    answer(path, [status, body](const KRTestServer::Request&) { return Answer { status, body }; });
}

QList<QByteArray> KRTestSite::targets() const
{
    QList<QByteArray> targets;
    for (const KRTestServer::Request& request : m_server.requests())
        targets.append(request.method == "GET" ? request.target : request.method + ' ' + request.target);
    return targets;
}

QByteArray KRTestSite::realAnswer(const QString& name)
{
    QFile file(QStringLiteral(PELINOR_TEST_DATA "/gnu-social/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

QByteArray KRTestSite::user(int id, const QByteArray& name)
{
    return "<user><id>" + QByteArray::number(id) + "</id><name></name><screen_name>" + name
        + "</screen_name></user>";
}

namespace {

/// One minute per ID, so that a higher ID is a later post.
QByteArray createdAt(int id)
{
    const QDateTime date = QDateTime(QDate(2026, 11, 1), QTime(0, 0), Qt::UTC).addSecs(id * 60LL);
    return "<created_at>"
        + QLocale::c().toString(date, QStringLiteral("ddd MMM dd HH:mm:ss '+0000' yyyy")).toLatin1()
        + "</created_at>";
}

} // namespace

QByteArray KRTestSite::message(int id, const QByteArray& sender, const QByteArray& recipient)
{
    const auto person = [](const QByteArray& role, const QByteArray& name) {
        return "<" + role + "><id>" + name + "0</id><screen_name>" + name + "</screen_name></" + role + ">";
    };
    return "<direct_message><id>" + QByteArray::number(id) + "</id><text>t</text>" + createdAt(id)
        + person("sender", sender) + person("recipient", recipient) + "</direct_message>";
}

QByteArray
KRTestSite::status(int id, const QByteArray& author, const QByteArray& text, const QByteArray& inReplyTo)
{
    const auto userID = static_cast<int>(qHash(author, 0) % 1000 + 1);
    return "<status><text>" + text + "</text>" + createdAt(id) + "<id>" + QByteArray::number(id)
        + "</id><in_reply_to_status_id>" + inReplyTo + "</in_reply_to_status_id>" + user(userID, author)
        + "</status>";
}

QByteArray KRTestSite::statuses(const QList<QByteArray>& elements)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><statuses type=\"array\">" + elements.join()
        + "</statuses>";
}

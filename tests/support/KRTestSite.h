#pragma once

#include "support/KRTestServer.h"

#include <QMap>

#include <functional>
#include <mutex>

/// A site over TLS that answers the paths a test has told it, and fails the test on any other. Answers are
/// functions, so that a test can change them; they run on the server's threads.
class KRTestSite {
public:
    struct Answer {
        int status = 200;
        QByteArray body;
    };
    using AnswerFunction = std::function<Answer(const KRTestServer::Request& request)>;

    KRTestSite();

    /// "127.0.0.1:PORT", the REST host.
    [[nodiscard]] QString host() const { return m_server.host(); }
    void answer(const QByteArray& path, AnswerFunction function);
    void answer(const QByteArray& path, const QByteArray& body, int status = 200);

    /// Of its certificate.
    [[nodiscard]] QString fingerprint() const { return m_server.fingerprint(); }
    /// Shows another one, that nobody vouches for, to all who connect from now on.
    void changeCertificate() { m_server.changeCertificate(KRTestCertificate::UnknownAuthority); }

    /// The targets (path and query) of what was asked for, in order, "POST " in front of a post.
    [[nodiscard]] QList<QByteArray> targets() const;
    [[nodiscard]] QList<KRTestServer::Request> requests() const { return m_server.requests(); }

    /// What a real site has answered: the file of that name.
    static QByteArray realAnswer(const QString& name);
    /// One "status" element in the form that sites send.
    static QByteArray
    status(int id, const QByteArray& author, const QByteArray& text, const QByteArray& inReplyTo = {});
    /// One "direct_message" element, as old as a status of that ID.
    static QByteArray message(int id, const QByteArray& sender, const QByteArray& recipient);
    /// The document around elements.
    static QByteArray statuses(const QList<QByteArray>& elements);
    static QByteArray user(int id, const QByteArray& name);

private:
    mutable std::mutex m_lock;
    QMap<QByteArray, AnswerFunction> m_answers;
    KRTestServer m_server;
};

#pragma once

#include "api/TwitterServiceHosts.h"
#include "foundation/KRMainThreadObject.h"
#include "model/records/KRTestRecords.h"
#include "model/records/TwitterUniquingTables.h"
#include "model/streams/TwitterStreamAccount.h"
#include "support/KRTest.h"
#include "support/KRTestSite.h"
#include "transport/KRTestRequest.h"

/// An account named "me" that loads from a test's site.
class KRTestStreamAccount final : public TwitterStreamAccount, public TwitterCredentials {
public:
    explicit KRTestStreamAccount(const KRTestSite& site)
    {
        KRTestTrustAuthority();
        m_hosts.setValueForKey(site.host(), QLatin1String(TwitterServiceHosts::RESTHostKey));
        m_hosts.setValueForKey(u"https://"_s + site.host(),
            QLatin1String(TwitterServiceHosts::searchHostKey));
    }

    const std::shared_ptr<TwitterUniquingTables>& tables() const { return m_tables; }
    const TwitterServiceHosts& hosts() const { return m_hosts; }

    QString username() const override { return u"me"_s; }
    QString password() const override { return u"pw"_s; }
    std::shared_ptr<TwitterStatusesOperations> authenticatedRequest(
        KRCallback<TwitterStatusList> callback) override
    {
        return TwitterAPI::authenticatedRequest(m_hosts, *this, std::move(callback));
    }
    std::shared_ptr<TwitterDirectMessagesOperations> authenticatedRequest(
        KRCallback<TwitterDirectMessageList> callback) override
    {
        return TwitterAPI::authenticatedRequest(m_hosts, *this, std::move(callback));
    }
    bool isAuthorOfStatus(const TwitterStatus& status) const override
    {
        return status.fromUser() && status.fromUser()->username() == username();
    }
    bool isAuthorOfDirectMessage(const TwitterDirectMessage& message) const override
    {
        return message.sender() && message.sender()->username() == username();
    }
    TwitterStatusPtr cachedStatusWithID(const QString& statusID) const override
    {
        return m_tables->cachedStatusWithID(statusID);
    }
    void requestStatusWithID(const QString& statusID, KRCallback<TwitterStatusPtr> callback) override
    {
        TwitterAPI::authenticatedRequest(m_hosts, *this, std::move(callback))->statusWithID(statusID);
    }

private:
    TwitterServiceHosts m_hosts;
    std::shared_ptr<TwitterUniquingTables> m_tables = std::make_shared<TwitterUniquingTables>();
};

/// A site, an account that loads from it, and lists of theirs.
class KRTestStreams : public testing::Test {
protected:
    template <class Stream>
    std::shared_ptr<Stream> makeStream()
    {
        if constexpr (requires(Stream stream) { stream.messages(); }) {
            return KRMakeMainThreadObject<Stream>(m_account->tables(), m_account);
        } else {
            auto stream = KRMakeMainThreadObject<Stream>(m_account->tables());
            stream->setAccount(m_account);
            return stream;
        }
    }
    /// A page of posts, the newest first.
    static QByteArray page(int first, int last, const QByteArray& text = "text")
    {
        QList<QByteArray> elements;
        for (int id = last; id >= first; --id)
            elements.append(KRTestSite::status(id, "you", text));
        return KRTestSite::statuses(elements);
    }

    KRTestSite m_site;
    std::shared_ptr<KRTestStreamAccount> m_account = std::make_shared<KRTestStreamAccount>(m_site);
};

/// A real status.
inline TwitterStatusPtr
KRTestStatus(int id, const QString& text = u"text"_s, const QString& inReplyTo = {}, int minute = -1)
{
    const TwitterUserPtr author = KRTestUser({}, id % 2 ? u"me"_s : u"you"_s);
    const QDateTime date = QDate(2026, 11, 1).startOfDay(Qt::UTC).addSecs((minute < 0 ? id : minute) * 60LL);
    const TwitterStatusPtr status = KRTestStatus(QString::number(id), author, date, text);
    status->setInReplyToStatusID(inReplyTo);
    return status;
}

inline QString KRTestIDs(const TwitterStatusList& statuses)
{
    QStringList ids;
    for (const TwitterStatusPtr& status : statuses)
        ids.append(status->isNotADummyStatus() ? status->statusID() : u"-"_s);
    return ids.join(u' ');
}

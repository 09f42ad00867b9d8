#pragma once

#include "core/Twitter.h"
#include "foundation/KRUserDefaults.h"
#include "model/records/KRTestRecords.h"
#include "support/KRTest.h"
#include "support/KRTestSite.h"
#include "transport/KRTestRequest.h"

/// A program of the test's own.
class KRTestProgram : public testing::Test {
protected:
    std::shared_ptr<Twitter> makeTwitter(bool runsHeartbeat = false)
    {
        return std::make_shared<Twitter>(TwitterEnvironment { &m_defaults, m_hosts, runsHeartbeat });
    }
    static TwitterAccountPtr add(Twitter& twitter, const QString& name, const QString& password)
    {
        const auto account = TwitterAccount::accountWithUsername(name, password, twitter.accountContext());
        twitter.addAccount(account);
        return account;
    }

    KRTestLog m_log;
    QTemporaryDir m_directory;
    KRUserDefaults m_defaults { m_directory.filePath(u"pelinor.ini"_s) };
    TwitterServiceHosts m_hosts;
};

/// A test's site, a root object that knows it, and an account named "Alice" that is in no list.
class KRTestAccount : public KRTestProgram {
protected:
    KRTestAccount()
    {
        KRTestTrustAuthority();
        m_hosts.setValueForKey(m_site.host(), QLatin1String(TwitterServiceHosts::RESTHostKey));
        m_hosts.setValueForKey(u"https://"_s + m_site.host(),
            QLatin1String(TwitterServiceHosts::searchHostKey));
        m_twitter = makeTwitter();
        m_context = m_twitter->accountContext();
        m_account = makeAccount();
    }

    TwitterAccountPtr makeAccount(const QString& name = u"Alice"_s) const
    {
        return TwitterAccount::accountWithUsername(name, u"pw"_s, m_context);
    }
    void addAccounts(const QStringList& names)
    {
        for (const QString& name : names)
            m_twitter->addAccount(makeAccount(name));
    }
    TwitterSearchPtr makeSearch(const QString& query) const
    {
        auto search = std::make_shared<TwitterSearch>(m_context.tables, m_context.hosts);
        if (!query.isNull())
            search->setQuery(query);
        return search;
    }
    static TwitterStatusPtr status(const QString& id, const QString& author, const QDateTime& date)
    {
        return KRTestStatus(id, KRTestUser({}, author), date, u"x"_s);
    }
    /// What comes for every list of an account.
    void answerLists(const KRTestSite::AnswerFunction& answer)
    {
        for (const char* list :
            { "statuses/home_timeline", "statuses/replies", "direct_messages", "direct_messages/sent" })
            m_site.answer(QByteArray("/") + list + ".xml", answer);
    }
    void answerWithNothing()
    {
        answerLists([](const auto&) { return KRTestSite::Answer { 200, "<nothing/>" }; });
        m_site.answer("/search.json", "{}");
    }

    KRTestSite m_site;
    std::shared_ptr<Twitter> m_twitter;
    TwitterAccountContext m_context;
    TwitterAccountPtr m_account;
};

#pragma once

#include "api/TwitterCredentials.h"
#include "api/TwitterServiceHostKeys.h"
#include "foundation/KRUserDefaults.h"
#include "services/TwitterServiceContext.h"
#include "support/KRTest.h"
#include "transport/KRCallback.h"
#include "transport/KRTestRequest.h"

struct TestCredentials final : TwitterCredentials {
    explicit TestCredentials(const QString& name = u"alice"_s, const QString& word = u"wonderland"_s)
        : m_username(name)
        , m_password(word)
    {
    }
    QString username() const override { return m_username; }
    QString password() const override { return m_password; }

private:
    QString m_username;
    QString m_password;
};

/// The result of an operation that is called with a callback.
template <class T, class Operation>
KRResult<T> resultOf(Operation operation)
{
    return *KRTestReceive<T>(operation)->result;
}

/// The hosts of links to pictures and movies.
inline void KRTestSetLinkHosts(TwitterServiceHosts& hosts)
{
    using namespace TwitterServiceHostKeys;
    for (const auto& [key, host] : { std::pair(TwitPicLinkHost, u"tp.example"_s),
             std::pair(YFrogLinkHost, u"yf.example"_s),
             std::pair(YFrogSecondLinkHost, u"yf2.example"_s),
             std::pair(TwitgooLinkHost, u"tg.example"_s),
             std::pair(ImgLyLinkHost, u"il.example"_s),
             std::pair(PixImLinkHost, u"www.px.example/f"_s) })
        hosts.setValueForKey(host, QLatin1String(key));
}

/// A server that answers every request in the same way, until told otherwise, and the tables around it.
class ServicesFixture : public testing::Test, protected KRTestAnswers {
protected:
    using KRTestAnswers::KRTestAnswers;

    void setHost(const char* key, const QString& value)
    {
        context.hosts.setValueForKey(value, QLatin1String(key));
    }

    QTemporaryDir folder;
    KRUserDefaults defaults { folder.filePath(u"defaults.ini"_s) };
    TwitterServiceContext context { {}, &defaults };
};

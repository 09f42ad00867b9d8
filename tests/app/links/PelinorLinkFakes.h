#pragma once

#include "app/links/PelinorLinks.h"

/// Writes down what was opened.
class FakeWorkspace final : public KRWorkspace {
public:
    explicit FakeWorkspace(QStringList& log)
        : m_log(log)
    {
    }
    bool openURL(const QUrl& url, Launch launch) override
    {
        m_log.append((launch == Launch::Normal ? QStringLiteral("open ") : QStringLiteral("open behind "))
            + url.toString());
        return true;
    }
    void beep() override { m_log.append(QStringLiteral("beep")); }

private:
    QStringList& m_log;
};

/// Writes down where a link led.
class FakeLinkPresenter final : public PelinorLinkPresenter {
public:
    explicit FakeLinkPresenter(QStringList& log)
        : m_log(log)
    {
    }
    void openImageViewer(const QUrl& url, const QString& source) override
    {
        m_log.append(QStringLiteral("image %1 of %2").arg(url.toString(), source));
    }
    void openMovieViewer(const QUrl& url) override
    {
        m_log.append(QStringLiteral("movie ") + url.toString());
    }
    void openShortLinkChecker(const QString& url) override { m_log.append(QStringLiteral("check ") + url); }
    void pushSearchView(const QString& query) override { m_log.append(QStringLiteral("search ") + query); }
    void pushUserDetailsView(const QString& name) override { m_log.append(QStringLiteral("user ") + name); }
    void pushStatusDetailsView(const QString& statusID, const QUrl& page) override
    {
        m_log.append(QStringLiteral("status %1 of %2").arg(statusID, page.toString()));
    }

private:
    QStringList& m_log;
};

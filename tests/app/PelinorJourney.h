#pragma once

#include "app/PelinorAppDelegate.h"
#include "app/lists/PelinorStatusListViewController.h"
#include "app/window/PelinorMainWindowController.h"
#include "app/writing/PelinorTextView.h"
#include "foundation/KRUserDefaults.h"
#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "support/KRTestLocalService.h"
#include "toolkit/transitions/KRMotion.h"
#include "transport/KRHTTPConnection.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

/// The whole road: a real service over TLS, the engine, and the windows that people see.
class Journey : public testing::Test {
protected:
    static constexpr int patience = 20'000;

    void SetUp() override
    {
        ASSERT_TRUE(m_service.isRunning());
        KRMotion::setEnabledByProgram(false);
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = m_service.authorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        start();
    }
    void TearDown() override
    {
        end();
        KRMotion::setEnabledByProgram(true);
    }

    enum class Services { Given, ToBeFound };
    void start(Services services = Services::Given)
    {
        const auto hosts = TwitterServiceHosts::hostsWithDefaults(m_defaults,
            services == Services::Given ? m_service.servicesFile() : QString());
        ASSERT_FALSE(hosts.isError());
        m_twitter = std::make_shared<Twitter>(TwitterEnvironment { &m_defaults, hosts.value(), false });
        // There is no keyring here.
        for (const TwitterAccountPtr& account : m_twitter->accounts())
            account->setPassword(account->username() == u"alice" ? u"wonderland"_s : u"builder"_s);
        m_delegate = std::make_unique<PelinorAppDelegate>(*m_twitter, m_defaults);
        m_delegate->applicationDidFinishLaunching();
    }
    void end()
    {
        m_delegate->applicationWillTerminate();
        m_delegate.reset();
        m_twitter.reset();
    }
    void signIn(const QString& name, const QString& password)
    {
        m_twitter->addAccount(
            TwitterAccount::accountWithUsername(name, password, m_twitter->accountContext()));
    }

    PelinorMainWindowController& window() { return *m_delegate->mainWindowController(); }
    template <class Predicate>
    static bool waitFor(Predicate predicate)
    {
        return QTest::qWaitFor(predicate, patience);
    }
    /// The timeline with its posts, asked for by nobody but the screens.
    bool timelineIsFilled()
    {
        return waitFor([this] { return window().topList() && window().topList()->statuses().size() >= 100; });
    }
    template <class Widget>
    static Widget* find(QWidget& parent, const QString& name)
    {
        auto* const widget = parent.findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return widget;
    }
    /// What a sheet on the window says; the sheet is closed by that.
    static QString readSheet(QWidget& parent)
    {
        auto* const sheet = parent.findChild<QMessageBox*>();
        if (!sheet)
            return {};
        const QString text = sheet->text() + u'|' + sheet->informativeText();
        delete sheet;
        return text;
    }
    /// Chooses the button of the modal alert that comes next.
    static void answerAlert(const QString& button)
    {
        QTimer::singleShot(0, [button] {
            auto* const alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(alert, nullptr);
            for (QAbstractButton* const one : alert->buttons()) {
                if (one->text() == button)
                    one->click();
            }
        });
    }
    void key(Qt::Key key) { QTest::keyClick(window().topList()->tableView().selectedCell(), key); }

    QTemporaryDir m_directory;
    KRQtRunLoopDriver m_driver;
    KRTestLocalService m_service;
    KRUserDefaults m_defaults { m_directory.filePath(u"pelinor.ini"_s) };
    std::shared_ptr<Twitter> m_twitter;
    std::unique_ptr<PelinorAppDelegate> m_delegate;
};

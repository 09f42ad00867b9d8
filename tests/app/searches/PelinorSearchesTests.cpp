#include "app/lists/PelinorListFakes.h"
#include "app/lists/PelinorTitleTableViewCell.h"
#include "app/searches/PelinorSearchViewController.h"
#include "app/searches/PelinorSearchesViewController.h"
#include "foundation/KRKeyedArchiver.h"
#include "support/KRTestServer.h"
#include "support/KRTestWait.h"
#include "transport/KRHTTPConnection.h"

#include <QInputDialog>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class PelinorSearchesTest : public testing::Test {
protected:
    PelinorSearchesTest()
    {
        KRHTTPTransportSettings settings = KRHTTPTransportSettings::current();
        settings.extraCAFile = KRTestAuthorityFile();
        KRHTTPTransportSettings::setCurrent(settings);
        hosts.setValueForKey(u"https://"_s + server.host(),
            QLatin1String(TwitterServiceHosts::searchHostKey));
        twitter = std::make_shared<Twitter>(TwitterEnvironment { &surroundings.defaults, hosts, false });
        for (const QString& query : { u"cats"_s, u"dogs"_s, u"birds"_s }) {
            const auto search
                = std::make_shared<TwitterSearch>(account->context().tables, account->context().hosts);
            search->setQuery(query);
            account->addSavedSearch(search);
        }
        screen = std::make_shared<PelinorSearchesViewController>(environment, *twitter);
        screen->setAccount(account);
        screen->view()->resize(420, 600);
        screen->view()->show();
        screen->viewWillAppear(false);
        QCoreApplication::processEvents();
    }
    ~PelinorSearchesTest() override { screen->viewWillDisappear(false); }

    KRTableView& table() { return screen->tableView(); }
    /// So many rows from one on, as one line.
    std::string told(qsizetype from = 0, qsizetype count = -1)
    {
        return rows().mid(from, count).join(u'|').toStdString();
    }
    QStringList rows()
    {
        QStringList names;
        for (qint64 row = 0; row < table().numberOfRows(); ++row)
            names.append(screen->tableViewAccessibleNameForRow(table(), row));
        return names;
    }
    /// As the account keeps them.
    QString saved() const
    {
        KRKeyedArchiver coder;
        account->encodeWithCoder(coder);
        QStringList names;
        for (const TwitterSearchPtr& search : account->savedSearches())
            names.append(search->query()
                + (search->displayName().isNull() ? QString() : u'=' + search->displayName()));
        return names.join(u' ');
    }
    qint64 rowOf(const QString& name) { return rows().indexOf(name); }
    void drag(const QString& name, int distance)
    {
        KRTableViewCell* const cell = table().cellForRow(rowOf(name));
        const QPoint start = cell->rect().center();
        QTest::mousePress(cell, Qt::LeftButton, {}, start);
        const QPoint end = start + QPoint(0, distance);
        QMouseEvent move(QEvent::MouseMove, end, cell->mapToGlobal(end), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(cell, &move);
        QTest::mouseRelease(cell, Qt::LeftButton, {}, end);
        QCoreApplication::processEvents();
    }

    KRTestServer server { KRTestServer::always(200, R"({"trends":[{"name":"#rain"}]})"),
        KRTestCertificate::Good };
    TwitterServiceHosts hosts;
    FakeSurroundings surroundings;
    PelinorScreenEnvironment& environment = surroundings.modelEnvironment;
    TwitterAccountPtr account = surroundings.account;
    std::shared_ptr<Twitter> twitter;
    std::shared_ptr<PelinorSearchesViewController> screen;
};

TEST_F(PelinorSearchesTest, OffersWhatIsSavedWhatWasLookedForAndTrends)
{
    ASSERT_TRUE(KRWaitUntil([&] { return rows().size() == 6; }));
    EXPECT_EQ(told(), "Saved searches|cats|dogs|birds|Trends|#rain");
    auto* const field = screen->view()->findChild<QLineEdit*>(u"searchField"_s);
    for (const QString& query : { u" "_s, u"one"_s, u" dogs "_s, u"ONE"_s, u"one"_s }) {
        field->setText(query);
        QTest::keyClick(field, Qt::Key_Return);
    }
    EXPECT_EQ(surroundings.screens.taken(), u"search one|search dogs|search ONE|search one"_s);
    for (int number = 0; number < 7; ++number)
        screen->search(QString::number(number));
    surroundings.screens.taken();
    table().reloadData();
    EXPECT_EQ(told(4, 10), "Recent searches|6|5|4|3|2|1|0|one|Forget these");
    table().cellForRow(5)->activate();
    table().cellForRow(1)->activate();
    EXPECT_EQ(surroundings.screens.taken(), u"search 6|search cats"_s);
    table().cellForRow(rowOf(u"Forget these"_s))->activate();
    EXPECT_EQ(rows().size(), 6);
    // The words of what went wrong, where nothing is there in its place.
    const auto trendless
        = std::make_shared<Twitter>(TwitterEnvironment { &surroundings.defaults, {}, false });
    PelinorSearches searches(account, *trendless, surroundings.defaults);
    searches.setTrendsError(errorWithDomain(u"x"_s, 1, u"no such place"_s));
    EXPECT_EQ(searches.rows().back().title, u"This site tells no trends: no such place"_s);
}

TEST_F(PelinorSearchesTest, SavedOnesAreRenamedMovedAndRemoved)
{
    const int height = table().cellForRow(1)->height();
    drag(u"cats"_s, height + 4);
    EXPECT_EQ(saved().toStdString(), u"dogs cats birds"_s.toStdString());
    drag(u"birds"_s, -5 * height);
    EXPECT_EQ(saved().toStdString(), u"birds dogs cats"_s.toStdString());
    drag(u"birds"_s, 50 * height);
    EXPECT_EQ(saved().toStdString(), u"dogs cats birds"_s.toStdString());
    drag(u"cats"_s, height / 3);
    EXPECT_EQ(saved().toStdString(), u"dogs cats birds"_s.toStdString());
    EXPECT_EQ(surroundings.screens.taken(), QString());

    table().selectRow(rowOf(u"birds"_s));
    QTest::keyClick(&table(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(saved().toStdString(), u"dogs birds cats"_s.toStdString());
    QTest::keyClick(&table(), Qt::Key_F2);
    auto* const sheet = screen->view()->findChild<QInputDialog*>(u"renameSheet"_s);
    ASSERT_TRUE(sheet);
    sheet->setTextValue(u" Feathers "_s);
    sheet->accept();
    EXPECT_EQ(saved().toStdString(), u"dogs birds=Feathers cats"_s.toStdString());
    EXPECT_GE(rowOf(u"Feathers"_s), 0);
    KRTableViewCell* const cell = table().cellForRow(rowOf(u"Feathers"_s));
    EXPECT_EQ(cell->actionNames(), (QStringList { u"Rename…"_s, u"Move Up"_s, u"Move Down"_s, u"Remove"_s }));
    cell->performAction(u"Move Down"_s);
    EXPECT_EQ(saved().toStdString(), u"dogs cats birds=Feathers"_s.toStdString());
    EXPECT_EQ(table().selectedRow(), rowOf(u"Feathers"_s));
    table().selectRow(rowOf(u"cats"_s));
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(saved().toStdString(), u"dogs birds=Feathers"_s.toStdString());
}

TEST_F(PelinorSearchesTest, ResultsAreSavedWithOneClick)
{
    const auto search = std::make_shared<TwitterSearch>(account->context().tables, account->context().hosts);
    search->setQuery(u"#rain"_s);
    PelinorSearchViewController results(environment);
    results.setAccount(account);
    results.setSearch(search);
    results.view();
    EXPECT_FALSE(results.isSaved());
    results.toggleSaved();
    EXPECT_EQ(saved().toStdString(), u"cats dogs birds #rain"_s.toStdString());
    results.toggleSaved();
    EXPECT_EQ(saved().toStdString(), u"cats dogs birds"_s.toStdString());
}

} // namespace

#include "app/messages/PelinorDirectMessageConversationViewController.h"

#include "app/links/PelinorScreenLinkPresenter.h"
#include "app/lists/PelinorTitleTableViewCell.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "app/messages/PelinorAnswerView.h"
#include "app/messages/PelinorDirectMessageTableViewCell.h"
#include "compose/PelinorPosting.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace {

using Row = PelinorConversationRow;
using Kind = Row::Kind;

// So near to the bottom the reader is at the newest.
constexpr int NearBottom = 8;

} // namespace

PelinorDirectMessageConversationViewController::PelinorDirectMessageConversationViewController(
    const PelinorScreenEnvironment& environment,
    Twitter& twitter,
    PelinorOutbox& outbox)
    : PelinorTableViewController(environment)
    , m_twitter(twitter)
    , m_outbox(outbox)
{
}

PelinorDirectMessageConversationViewController::~PelinorDirectMessageConversationViewController()
{
    if (m_presenter)
        m_presenter->setChangeHandler({});
}

QString PelinorDirectMessageConversationViewController::title() const
{
    const TwitterUserPtr user = m_conversation ? m_conversation->correspondent() : nullptr;
    return user ? user->username() : tr("Unknown author");
}

void PelinorDirectMessageConversationViewController::loadView()
{
    if (!m_presenter)
        m_presenter = std::make_shared<PelinorConversation>(account(),
            m_conversation,
            m_outbox,
            environment().notifications,
            environment().defaults);
    m_presenter->setChangeHandler([this] { tableView().reloadData(); });
    auto view = std::make_unique<QWidget>();
    m_answerView = new PelinorAnswerView(view.get());
    m_answerView->setPlaceholderText(tr("Write to %1").arg(title()));
    m_answerView->setLongestText(account()->longestPost());
    m_answerView->setServiceContext(
        [this] { return PelinorPosting::serviceContext(m_twitter, *account(), &environment().defaults); });
    m_answerView->setText(m_presenter->answer());
    connect(m_answerView, &PelinorAnswerView::textChanged, this, [this] {
        m_presenter->setAnswer(m_answerView->text());
    });
    connect(m_answerView, &PelinorAnswerView::sendRequested, this, [this] { _send(); });
    auto* const layout = new QVBoxLayout(view.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeTableView().release(), 1);
    layout->addWidget(m_answerView);
    view->setFocusProxy(m_answerView);
    setView(std::move(view));
    QScrollBar* const scrolling = tableView().verticalScrollBar();
    connect(scrolling, &QScrollBar::valueChanged, this, [this] { m_isAtBottom = _isNearBottom(); });
    // The field below grows with what is written in it, and windows are made lower.
    connect(scrolling, &QScrollBar::rangeChanged, this, [this, scrolling](int /*minimum*/, int maximum) {
        if (m_isAtBottom)
            scrolling->setValue(maximum);
    });
}

void PelinorDirectMessageConversationViewController::_send()
{
    tableView().scrollToPoint({ 0, tableView().totalHeight() }, KRScrollView::Animated::No);
    m_presenter->sendAnswer();
    m_answerView->setText(m_presenter->answer());
}

void PelinorDirectMessageConversationViewController::viewWillAppear(bool /*animated*/)
{
    m_presenter->beginLooking();
    m_preferencesObservation
        = environment().notifications.observe<PelinorDisplayPreferencesDidChangeNotification>(
            [this](const auto&) { tableView().reloadData(); });
    tableView().reloadData();
}

void PelinorDirectMessageConversationViewController::viewWillDisappear(bool /*animated*/)
{
    m_presenter->endLooking();
    m_preferencesObservation.invalidate();
}

// The reader's place

bool PelinorDirectMessageConversationViewController::_isNearBottom()
{
    const QScrollBar& scrolling = *tableView().verticalScrollBar();
    return scrolling.value() + NearBottom >= scrolling.maximum();
}

PelinorDirectMessageConversationViewController::Place PelinorDirectMessageConversationViewController::_place()
{
    const KRTableView& table = tableView();
    Place place { .isAtBottom = m_isAtBottom, .isAtTop = table.documentVisibleRect().y() == 0 };
    const KRRange rows = table.visibleRange();
    // The lowest one: what comes above changes the look of the uppermost, which begins a group no longer.
    qsizetype row = rows.end() - 1;
    while (row >= rows.location && m_rows[size_t(row)].kind != Kind::Message)
        --row;
    if (row >= rows.location) {
        place.identity = m_rows[size_t(row)].identity();
        place.offset = table.relativeVisibleOffsetForRow(row);
    }
    return place;
}

void PelinorDirectMessageConversationViewController::tableViewWillReload(KRTableView& /*tableView*/)
{
    if (!m_rows.empty())
        m_place = _place();
    m_rows = m_presenter->rows();
}

void PelinorDirectMessageConversationViewController::tableViewDidReload(KRTableView& tableView)
{
    if (m_place.isAtBottom) {
        tableView.scrollToPoint({ 0, tableView.totalHeight() }, KRScrollView::Animated::No);
        return;
    }
    // That nothing came is said where it was asked for.
    if (m_place.isAtTop && m_presenter->older() == PelinorConversation::Older::Failed) {
        tableView.scrollToPoint({ 0, 0 }, KRScrollView::Animated::No);
        return;
    }
    const auto row = std::ranges::find(m_rows, m_place.identity, &Row::identity);
    if (row != m_rows.end())
        tableView.scrollToRow(row - m_rows.begin(), m_place.offset);
}

void PelinorDirectMessageConversationViewController::tableViewDidShowRows(KRTableView& /*tableView*/,
    KRRange rows)
{
    if (rows.length == 0 || rows.location > 0 || m_rows.front().kind != Kind::Older)
        return;
    // This comes before the scroll bar tells of its value.
    m_isAtBottom = _isNearBottom();
    m_presenter->topCameIntoView();
}

// Rows

int PelinorDirectMessageConversationViewController::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    return int(m_rows.size());
}

QString PelinorDirectMessageConversationViewController::_titleOfRow(const Row& row) const
{
    if (row.kind == Kind::Day)
        return PelinorConversationRows::titleOfDay(row.day, KRNow().toLocalTime().date());
    switch (m_presenter->older()) {
    case PelinorConversation::Older::Loading:
        return tr("Loading…");
    case PelinorConversation::Older::Failed:
        return tr("Loading failed. Try again");
    default:
        return tr("Show older messages");
    }
}

int PelinorDirectMessageConversationViewController::tableViewHeightForRow(KRTableView& tableView, qint64 row)
{
    const Row& shown = m_rows[size_t(row)];
    if (!shown.message)
        return PelinorTitleTableViewCell::heightForContent({ .title = {}, .isHeading = true });
    return PelinorDirectMessageTableViewCell::heightForRow(shown,
        tableView.width(),
        environment().displayPreferences.statusCellFontSize,
        environment().heights);
}

QString PelinorDirectMessageConversationViewController::tableViewAccessibleNameForRow(
    KRTableView& /*tableView*/,
    qint64 row)
{
    const Row& shown = m_rows[size_t(row)];
    return shown.message ? PelinorDirectMessageTableViewCell::accessibleNameForRow(shown)
                         : _titleOfRow(shown);
}

KRTableViewCell* PelinorDirectMessageConversationViewController::tableViewCellForRow(KRTableView& tableView,
    qint64 row)
{
    const Row& shown = m_rows[size_t(row)];
    if (!shown.message) {
        auto* const cell = reusedOrNewCell<PelinorTitleTableViewCell>(tableView, environment().notifications);
        const bool isHeading = shown.kind == Kind::Day;
        const bool isNote = !isHeading && m_presenter->older() == PelinorConversation::Older::Loading;
        cell->setContent({ .title = _titleOfRow(shown), .isHeading = isHeading, .isNote = isNote });
        cell->setActivateHandler([this] { m_presenter->loadOlder(); });
        return cell;
    }
    auto* const cell
        = reusedOrNewCell<PelinorDirectMessageTableViewCell>(tableView, environment().notifications);
    cell->setContent(shown, environment().displayPreferences.statusCellFontSize);
    cell->setLinkHandler([this, cell](const QString& text, int type) {
        PelinorScreenLinkPresenter(environment(), account(), navigationController())
            .handleLink(text, type, cell);
    });
    const quint64 number = shown.outgoing.number;
    cell->setTryAgainHandler([this, number] { m_presenter->tryAgain(number); });
    cell->setDiscardHandler([this, number] { m_presenter->discard(number); });
    return cell;
}

bool PelinorDirectMessageConversationViewController::tableViewKeyDown(KRTableView& tableView,
    const QKeyEvent& event)
{
    const qint64 row = tableView.selectedRow();
    if (row >= 0 && m_rows[size_t(row)].kind == Kind::Outgoing && event.key() == Qt::Key_Delete) {
        m_presenter->discard(m_rows[size_t(row)].outgoing.number);
        return true;
    }
    // What is typed is meant for the answer.
    const QString text = event.text();
    if (text.isEmpty() || !text.at(0).isPrint() || text.at(0).isSpace()
        || event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    m_answerView->setFocus(Qt::ShortcutFocusReason);
    m_answerView->insertText(text);
    return true;
}

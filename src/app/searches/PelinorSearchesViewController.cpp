#include "app/searches/PelinorSearchesViewController.h"

#include "app/lists/PelinorTitleTableViewCell.h"
#include "app/look/PelinorCellColors.h"

#include <QCompleter>
#include <QFrame>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QStringListModel>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

using Kind = PelinorSearches::Row::Kind;

constexpr int DropMarkHeight = 2;

PelinorTitleTableViewCell::Content contentOf(const PelinorSearches::Row& row)
{
    return { .title = row.title,
        .isFresh = row.isFresh,
        .isHeading = row.kind == Kind::Heading,
        .isNote = row.kind == Kind::Note };
}

} // namespace

PelinorSearchesViewController::PelinorSearchesViewController(const PelinorScreenEnvironment& environment,
    Twitter& twitter)
    : PelinorTableViewController(environment)
    , m_twitter(twitter)
{
}

PelinorSearchesViewController::~PelinorSearchesViewController() = default;

void PelinorSearchesViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    m_searchField = new QLineEdit(view.get());
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(tr("Search all posts"));
    m_searchField->setAccessibleName(tr("Search all posts"));
    m_searchField->setClearButtonEnabled(true);
    auto* const completer = new QCompleter(new QStringListModel(m_searchField), m_searchField);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    m_searchField->setCompleter(completer);
    connect(m_searchField, &QLineEdit::returnPressed, this, [this] { search(m_searchField->text()); });
    auto* const layout = new QVBoxLayout(view.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* const margins = new QVBoxLayout;
    margins->setContentsMargins(10, 8, 10, 8);
    margins->addWidget(m_searchField);
    layout->addLayout(margins);
    layout->addWidget(makeTableView().release(), 1);
    view->setFocusProxy(m_searchField);
    setView(std::move(view));
}

void PelinorSearchesViewController::viewWillAppear(bool /*animated*/)
{
    if (!m_searches)
        m_searches.emplace(account(), m_twitter, environment().defaults);
    const auto reload = [this](const auto&) { tableView().reloadData(); };
    m_observations.push_back(
        environment().notifications.observe<TwitterAccountDidUpdateNotification>(reload, account().get()));
    m_observations.push_back(environment().notifications.observe<TwitterTrendsDidUpdateNotification>(
        [this](const auto&) {
            m_searches->setTrendsError({});
            tableView().reloadData();
        },
        &m_twitter));
    m_observations.push_back(environment().notifications.observe<TwitterTrendsDidFailNotification>(
        [this](const TwitterTrendsDidFailNotification& failure) {
            m_searches->setTrendsError(failure.error);
            tableView().reloadData();
        },
        &m_twitter));
    // Whoever comes back looks for something else.
    m_searchField->selectAll();
    m_twitter.updateTrends();
    tableView().reloadData();
}

void PelinorSearchesViewController::viewWillDisappear(bool /*animated*/)
{
    m_observations.clear();
}

void PelinorSearchesViewController::search(const QString& query)
{
    if (const TwitterSearchPtr search = m_searches->searchFor(query))
        _show(search);
}

void PelinorSearchesViewController::_show(const TwitterSearchPtr& search)
{
    push(environment().screens.makeSearchView(account(), search));
}

void PelinorSearchesViewController::_open(const Row& row)
{
    if (row.kind == Kind::Saved) {
        _show(row.search);
    } else if (row.kind == Kind::Query) {
        search(row.title);
    } else if (row.kind == Kind::ForgetRecent) {
        m_searches->forgetRecentQueries();
        tableView().reloadData();
    }
}

// Rows

void PelinorSearchesViewController::tableViewWillReload(KRTableView& tableView)
{
    const qint64 selected = tableView.selectedRow();
    m_selected = selected >= 0 && selected < qint64(m_rows.size()) ? std::optional(m_rows[size_t(selected)])
                                                                   : std::nullopt;
    // The row under the pointer may be another one now.
    delete m_dropMark;
    m_dragged = nullptr;
    m_rows = m_searches ? m_searches->rows() : std::vector<Row>();
    if (m_searches)
        static_cast<QStringListModel*>(m_searchField->completer()->model())
            ->setStringList(m_searches->recentQueries());
}

void PelinorSearchesViewController::tableViewDidReload(KRTableView& tableView)
{
    // Rows come and go above the chosen one, and it may have been moved or renamed itself.
    const auto row = std::ranges::find_if(m_rows, [this](const Row& one) {
        return m_selected && one.kind == m_selected->kind
            && (one.search ? one.search == m_selected->search : one.title == m_selected->title);
    });
    if (row != m_rows.end() && row - m_rows.begin() != tableView.selectedRow())
        tableView.selectRow(row - m_rows.begin());
}

int PelinorSearchesViewController::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    return int(m_rows.size());
}

int PelinorSearchesViewController::tableViewHeightForRow(KRTableView& /*tableView*/, qint64 row)
{
    return PelinorTitleTableViewCell::heightForContent(contentOf(m_rows[size_t(row)]));
}

QString PelinorSearchesViewController::tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row)
{
    return PelinorTitleTableViewCell::accessibleNameForContent(contentOf(m_rows[size_t(row)]));
}

KRTableViewCell* PelinorSearchesViewController::tableViewCellForRow(KRTableView& tableView, qint64 row)
{
    const Row& shown = m_rows[size_t(row)];
    auto* const cell = reusedOrNewCell<PelinorTitleTableViewCell>(tableView, environment().notifications);
    cell->setContent(contentOf(shown));
    cell->setActivateHandler([this, shown] { _open(shown); });
    if (shown.kind == Kind::Saved) {
        cell->setMenuHandler([this, search = shown.search](QMenu& menu) { _fillMenu(menu, search); });
        cell->setDragHandler([this, cell](std::optional<int> y) {
            if (y)
                _cellWasDragged(*cell, *y);
            else
                _cellWasDropped();
        });
    }
    return cell;
}

// Saved searches

void PelinorSearchesViewController::_fillMenu(QMenu& menu, const TwitterSearchPtr& search)
{
    menu.addAction(tr("Rename…"), this, [this, search] { _rename(search); });
    menu.addAction(tr("Move Up"), this, [this, search] { m_searches->move(search, -1); });
    menu.addAction(tr("Move Down"), this, [this, search] { m_searches->move(search, 1); });
    menu.addAction(tr("Remove"), this, [this, search] {
        m_searches->remove(search);
        tableView().reloadData();
    });
}

void PelinorSearchesViewController::_rename(const TwitterSearchPtr& search)
{
    auto* const sheet = new QInputDialog(view());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setObjectName(QStringLiteral("renameSheet"));
    sheet->setWindowTitle(tr("Rename Search"));
    // A label of its own would take what is in it for markup.
    sheet->setLabelText(tr("Name in the list; empty, the search goes by what it looks for:"));
    sheet->setTextValue(search->displayName().isNull() ? search->query() : search->displayName());
    connect(sheet, &QInputDialog::textValueSelected, this, [this, search](const QString& name) {
        m_searches->rename(search, name == search->query() ? QString() : name);
    });
    sheet->open();
}

qint64 PelinorSearchesViewController::_rowOfFirstSaved() const
{
    const auto first = std::ranges::find(m_rows, Kind::Saved, &Row::kind);
    return first - m_rows.begin();
}

const PelinorSearches::Row* PelinorSearchesViewController::_savedRow(qint64 row) const
{
    const bool isSaved = row >= 0 && row < qint64(m_rows.size()) && m_rows[size_t(row)].kind == Kind::Saved;
    return isSaved ? &m_rows[size_t(row)] : nullptr;
}

void PelinorSearchesViewController::_cellWasDragged(const PelinorTitleTableViewCell& cell, int y)
{
    const Row* const dragged = _savedRow(cell.row());
    if (!dragged)
        return;
    m_dragged = dragged->search;
    const int height = cell.height();
    const qint64 first = _rowOfFirstSaved();
    const qint64 last = first + account()->savedSearches().size() - 1;
    // Between which rows the pointer is; on the near half of a neighbour the search stays before it.
    const qint64 gap
        = std::clamp(cell.row() + qint64(std::floor((y + height / 2.0) / height)), first, last + 1);
    m_dropDistance = gap > cell.row() ? gap - cell.row() - 1 : gap - cell.row();
    if (!m_dropMark) {
        m_dropMark = new QFrame(tableView().viewport());
        m_dropMark->setAutoFillBackground(true);
        QPalette palette = m_dropMark->palette();
        palette.setColor(QPalette::Window, PelinorCellColors::forPalette(palette).selectionMark);
        m_dropMark->setPalette(palette);
    }
    const int top = cell.y() + int(gap - cell.row()) * height;
    m_dropMark->setGeometry(0, top - DropMarkHeight / 2, tableView().width(), DropMarkHeight);
    m_dropMark->raise();
    m_dropMark->show();
}

void PelinorSearchesViewController::_cellWasDropped()
{
    delete m_dropMark;
    if (const TwitterSearchPtr search = std::exchange(m_dragged, nullptr))
        m_searches->move(search, std::exchange(m_dropDistance, 0));
}

bool PelinorSearchesViewController::tableViewKeyDown(KRTableView& tableView, const QKeyEvent& event)
{
    const Row* const row = _savedRow(tableView.selectedRow());
    if (!row)
        return false;
    const TwitterSearchPtr search = row->search;
    const bool isAlt = event.modifiers() == Qt::AltModifier;
    if (isAlt && event.key() == Qt::Key_Up) {
        m_searches->move(search, -1);
    } else if (isAlt && event.key() == Qt::Key_Down) {
        m_searches->move(search, 1);
    } else if (event.key() == Qt::Key_Delete) {
        m_searches->remove(search);
        tableView.reloadData();
    } else if (event.key() == Qt::Key_F2) {
        _rename(search);
    } else {
        return false;
    }
    return true;
}

#include "GalleryTablePage.h"

#include "GalleryLook.h"
#include "text/render/KRColorConversion.h"
#include "toolkit/KRTableView.h"
#include "toolkit/KRTableViewCell.h"

#include <QPainter>
#include <QStyle>

namespace {

constexpr int RowCount = 10000;
constexpr int ShortHeight = 56;
constexpr int LineHeight = 18;
constexpr int TextX = 64;

const QString& detail(qint64 row)
{
    static const QString details[] = {
        QStringLiteral("One line is enough for this one."),
        QStringLiteral(
            "Rows may be as tall as they like.\nThis one has a second line, and keeps it to itself."),
        QStringLiteral(
            "Only the rows on screen have views.\nThe views of those that scroll away are used again.\n"
            "So ten thousand rows weigh no more than twenty."),
    };
    return details[row % 3];
}

int lineCount(qint64 row)
{
    return int(detail(row).count(u'\n')) + 1;
}

QString titleOf(qint64 row)
{
    return QStringLiteral("Row %1").arg(QLocale().toString(row + 1));
}

class RowCell final : public KRTableViewCell {
public:
    RowCell()
        : KRTableViewCell(QStringLiteral("row"))
    {
    }

    void show(qint64 row)
    {
        m_shownRow = row;
        setAccessibleName(titleOf(row));
        update();
    }

    void selectedStateDidChange() override { update(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const GalleryLook& look = GalleryLook::forPalette(palette());
        // From the left edge in left-to-right programs, from the right edge in others.
        const auto area
            = [this](const QRect& rect) { return QStyle::visualRect(layoutDirection(), this->rect(), rect); };
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), selected() ? look.selection : look.card);
        if (selected())
            painter.fillRect(area({ 0, 0, 3, height() }), look.accent);
        painter.fillRect(area({ TextX, height() - 1, width() - TextX, 1 }), look.line);

        const QRect picture = area({ 16, 10, 36, 36 });
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor::fromHsl(int(m_shownRow * 47 % 360), 110, 130));
        painter.drawRoundedRect(picture, 6, 6);
        painter.setPen(Qt::white);
        painter.setFont(GalleryLook::font(11, true));
        painter.drawText(picture, Qt::AlignCenter, QString(QChar(int(u'A' + m_shownRow % 26))));

        // Lines stand at the program's side and are read in their own direction.
        painter.setLayoutDirection(Qt::LayoutDirectionAuto);
        const int side = int(Qt::AlignVCenter | Qt::AlignAbsolute)
            | int(isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft);
        painter.setPen(look.text);
        painter.setFont(GalleryLook::font(10, true));
        painter.drawText(area({ TextX, 9, width() - TextX - 16, 20 }), side, titleOf(m_shownRow));
        painter.setPen(look.secondaryText);
        painter.setFont(GalleryLook::font(9));
        int y = 29;
        for (const QString& line : detail(m_shownRow).split(u'\n')) {
            painter.drawText(area({ TextX, y, width() - TextX - 16, LineHeight }), side, line);
            y += LineHeight;
        }
    }

private:
    qint64 m_shownRow = 0;
};

} // namespace

GalleryTablePage::~GalleryTablePage()
{
    if (m_table)
        m_table->setDelegate(nullptr);
}

void GalleryTablePage::loadView()
{
    auto table = std::make_unique<KRTableView>();
    m_table = table.get();
    table->setAccessibleName(QStringLiteral("Rows"));
    table->setBackgroundKRColor(KRColorFromQColor(GalleryLook::forPalette(table->palette()).card));
    table->setDelegate(this);
    table->reloadData();
    table->selectRow(2);
    setView(std::move(table));
}

int GalleryTablePage::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    return RowCount;
}

int GalleryTablePage::tableViewHeightForRow(KRTableView& /*tableView*/, qint64 row)
{
    return ShortHeight + (lineCount(row) - 1) * LineHeight;
}

QString GalleryTablePage::tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row)
{
    return titleOf(row);
}

KRTableViewCell* GalleryTablePage::tableViewCellForRow(KRTableView& tableView, qint64 row)
{
    auto* cell = static_cast<RowCell*>(tableView.dequeueReusableCellWithIdentifier(QStringLiteral("row")));
    if (!cell)
        cell = new RowCell;
    cell->show(row);
    return cell;
}

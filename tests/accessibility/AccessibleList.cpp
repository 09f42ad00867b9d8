// A window for a screen reader: a list of a thousand rows with links in them, and a text to read at leisure.
// Writes what is clicked, and takes the names of keys to press from its standard input.

#include "platform/event_loop/KRQtRunLoopDriver.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/KRActiveTextView.h"
#include "toolkit/KRTableView.h"
#include "toolkit/KRTableViewCell.h"
#include "toolkit/KRTableViewDelegate.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QSocketNotifier>
#include <QVBoxLayout>

#include <cstdio>
#include <unistd.h>

namespace {

constexpr int RowCount = 1000;
constexpr int RowHeight = 30;

void printClick(const QString& text, KRActiveStringType type)
{
    std::printf("click %d %s\n", int(type), qPrintable(text));
    std::fflush(stdout);
}

KRAttributedString styled(const QString& text)
{
    return AttributedStringForStatus(text, KRActiveTextRanges(text), KRStatusTextSize::Normal);
}

class Cell final : public KRTableViewCell {
public:
    Cell()
        : KRTableViewCell(QStringLiteral("cell"))
        , m_tracker(new KRActiveTextTracker(*this, m_text))
    {
        m_tracker->setClickHandler(printClick);
    }
    void setText(const QString& text)
    {
        m_text.setContainerSize({ 2000, KRActiveTextRenderer::UnboundedHeight });
        m_text.setAttributedString(styled(text), KRActiveTextRanges(text));
        m_tracker->textDidChange({ 0, 0 });
        setAccessibleName(text);
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        m_text.drawAtPoint(painter, { 0, 0 });
        m_tracker->draw(painter);
    }

private:
    KRActiveTextRenderer m_text;
    KRActiveTextTracker* m_tracker;
};

class Rows final : public KRTableViewDelegate {
public:
    int numberOfRowsInTableView(KRTableView& /*tableView*/) override { return RowCount; }
    int tableViewHeightForRow(KRTableView& /*tableView*/, qint64 /*row*/) override { return RowHeight; }
    QString tableViewAccessibleNameForRow(KRTableView& /*tableView*/, qint64 row) override
    {
        return QStringLiteral("row %1 by @author%1 about #topic").arg(row);
    }
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override
    {
        auto* cell = static_cast<Cell*>(tableView.dequeueReusableCellWithIdentifier(QStringLiteral("cell")));
        if (!cell)
            cell = new Cell;
        cell->setText(tableViewAccessibleNameForRow(tableView, row));
        return cell;
    }
};

// One line each: the name of a key as key sequences have them.
void pressKeysFromInput()
{
    char line[64];
    if (!std::fgets(line, sizeof line, stdin)) {
        QCoreApplication::quit();
        return;
    }
    const QKeySequence keys(QString::fromLatin1(line).trimmed());
    QWidget* const focus = QApplication::focusWidget();
    for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
        QKeyEvent event(type, keys[0].key(), keys[0].keyboardModifiers());
        if (focus)
            QCoreApplication::sendEvent(focus, &event);
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::setvbuf(stdin, nullptr, _IONBF, 0);
    QApplication application(argc, argv);
    KRQtRunLoopDriver driver;
    QApplication::setApplicationName(QStringLiteral("accessible-list"));
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    Rows rows;
    auto* const table = new KRTableView;
    table->setAccessibleName(QStringLiteral("Posts"));
    table->setDelegate(&rows);
    layout->addWidget(table, 1);
    auto* const text = new KRActiveTextView;
    const QString details = QStringLiteral("Details of @bob at http://example.org/");
    text->setAttributedString(styled(details), KRActiveTextRanges(details));
    text->setClickHandler(printClick);
    layout->addWidget(text);
    window.resize(600, 400);
    window.show();
    table->reloadData();
    table->setFocus();
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &pressKeysFromInput);
    const int exitCode = QApplication::exec();
    table->setDelegate(nullptr);
    return exitCode;
}

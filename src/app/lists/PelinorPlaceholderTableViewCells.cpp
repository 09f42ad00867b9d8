#include "app/lists/PelinorPlaceholderTableViewCells.h"

#include "app/look/PelinorCellColors.h"
#include "text/render/KRActiveTextStyle.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int HeaderHeight = 11;
constexpr int LineHeight = 48;
constexpr int SideMargin = 18;
constexpr int PointSize = 10;

} // namespace

void PelinorPlaceholderTableViewCell::setText(const QString& text, Tone tone)
{
    m_text = text;
    m_tone = tone;
    setAccessibleName(text);
    update();
}

void PelinorPlaceholderTableViewCell::paintEvent(QPaintEvent* /*event*/)
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    QPainter painter(this);
    if (selected() && !m_text.isEmpty())
        painter.fillRect(rect(), colors.selectedBackground);
    if (m_text.isEmpty()) {
        // Nothing else would show that the keyboard is here.
        if (hasFocus()) {
            painter.setPen(QPen(colors.selectionMark, 2));
            painter.drawRect(rect().adjusted(1, 1, -1, -1));
        }
        return;
    }
    painter.setFont(KRMessageFont(PointSize));
    painter.setPen(m_tone == Tone::Error ? colors.error
            : m_tone == Tone::Action     ? colors.selectionMark
                                         : colors.secondaryText);
    const QRect line = rect().adjusted(SideMargin, 0, -SideMargin, 0);
    painter.drawText(line,
        int(Qt::AlignCenter | Qt::TextSingleLine),
        painter.fontMetrics().elidedText(m_text, Qt::ElideRight, line.width()));
}

HeaderStreamTableViewCell::HeaderStreamTableViewCell()
    : PelinorPlaceholderTableViewCell(identifier())
{
}

QString HeaderStreamTableViewCell::identifier()
{
    return QStringLiteral("HeaderStreamTableViewCell");
}

int HeaderStreamTableViewCell::heightForTableWidth(int /*width*/)
{
    return HeaderHeight;
}

LoadingTableViewCell::LoadingTableViewCell()
    : PelinorPlaceholderTableViewCell(identifier())
{
    setState(State::Loading);
}

QString LoadingTableViewCell::identifier()
{
    return QStringLiteral("LoadingTableViewCell");
}

int LoadingTableViewCell::heightForTableWidth(int /*width*/)
{
    return LineHeight;
}

void LoadingTableViewCell::setState(State state, Place place)
{
    m_state = state;
    setText(textForState(state, place), state == State::Loading ? Tone::Quiet : Tone::Action);
}

QString LoadingTableViewCell::textForState(State state, Place place)
{
    if (state == State::Loading)
        return tr("Loading…");
    if (place == Place::End)
        return tr("Older posts could not be loaded. Try again");
    if (state == State::Failed)
        return tr("Loading failed. Try again");
    return place == Place::Gap ? tr("Some posts are missing here") : tr("Show older posts");
}

void LoadingTableViewCell::mousePressEvent(QMouseEvent* event)
{
    const QPointer<LoadingTableViewCell> self(this);
    KRTableViewCell::mousePressEvent(event);
    if (self && event->button() == Qt::LeftButton)
        activate();
}

bool LoadingTableViewCell::activate()
{
    // A copy: the handler may destroy the cell.
    const auto clicked = m_clicked;
    if (m_state == State::Loading || !clicked)
        return false;
    clicked();
    return true;
}

EndOfStreamTableViewCell::EndOfStreamTableViewCell()
    : PelinorPlaceholderTableViewCell(identifier())
{
}

QString EndOfStreamTableViewCell::identifier()
{
    return QStringLiteral("EndOfStreamTableViewCell");
}

int EndOfStreamTableViewCell::heightForTableWidth(int /*width*/)
{
    return LineHeight;
}

ErrorStreamTableViewCell::ErrorStreamTableViewCell()
    : PelinorPlaceholderTableViewCell(identifier())
{
}

QString ErrorStreamTableViewCell::identifier()
{
    return QStringLiteral("ErrorStreamTableViewCell");
}

int ErrorStreamTableViewCell::heightForTableWidth(int /*width*/)
{
    return LineHeight;
}

#include "app/messages/PelinorConversationRows.h"

#include <QCoreApplication>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PelinorConversationRows)
};

using Row = PelinorConversationRow;

QDate dayOf(const QDateTime& date)
{
    return date.toLocalTime().date();
}

bool isOfOneGroup(const Row& one, const Row& next)
{
    return one.isMine == next.isMine && one.day == next.day
        && one.message->date().secsTo(next.message->date())
        <= std::chrono::seconds(PelinorConversationRows::groupGap).count();
}

Row rowOfOutgoing(const PelinorOutgoingMessage& outgoing)
{
    const auto message = std::make_shared<TwitterDirectMessage>();
    message->setText(outgoing.text);
    message->setDate(outgoing.date);
    return { .kind = Row::Kind::Outgoing,
        .day = dayOf(outgoing.date),
        .message = message,
        .outgoing = outgoing,
        .isMine = true };
}

} // namespace

QString PelinorConversationRow::identity() const
{
    switch (kind) {
    case Kind::Older:
        return u"older"_s;
    case Kind::Day:
        return u"day "_s + day.toString(Qt::ISODate);
    case Kind::Message:
        return u"message "_s + message->messageID();
    case Kind::Outgoing:
        return u"outgoing %1"_s.arg(outgoing.number);
    }
    return {};
}

std::vector<PelinorConversationRow> PelinorConversationRows::rows(const TwitterAccount& account,
    const TwitterDirectMessageList& newestFirst,
    const QList<PelinorOutgoingMessage>& outgoing,
    bool hasOlder)
{
    std::vector<Row> rows;
    rows.reserve(size_t(newestFirst.size() + outgoing.size()) * 2 + 1);
    if (hasOlder)
        rows.push_back({ .kind = Row::Kind::Older });
    const auto add = [&rows](Row&& row) {
        const bool isFirst = rows.empty() || rows.back().kind == Row::Kind::Older;
        if (row.day.isValid() && (isFirst || rows.back().day != row.day))
            rows.push_back({ .kind = Row::Kind::Day, .day = row.day });
        if (!rows.empty() && rows.back().message && isOfOneGroup(rows.back(), row)) {
            rows.back().endsGroup = false;
            row.beginsGroup = false;
        }
        rows.push_back(std::move(row));
    };
    for (auto message = newestFirst.crbegin(); message != newestFirst.crend(); ++message)
        add({ .day = dayOf((*message)->date()),
            .message = *message,
            .isMine = account.isAuthorOfDirectMessage(**message) });
    for (const PelinorOutgoingMessage& message : outgoing)
        add(rowOfOutgoing(message));
    return rows;
}

QString PelinorConversationRows::titleOfDay(const QDate& day, const QDate& today)
{
    const qint64 ago = day.daysTo(today);
    if (ago == 0)
        return Texts::tr("Today");
    if (ago == 1)
        return Texts::tr("Yesterday");
    const QLocale locale;
    return ago > 1 && ago < 7 ? locale.standaloneDayName(day.dayOfWeek())
                              : locale.toString(day, QLocale::LongFormat);
}

#include "model/records/TwitterRecordOrder.h"

#include "text/KRDateAdditions.h"

namespace {

QStringView withoutLeadingZeros(QStringView id)
{
    qsizetype zeros = 0;
    while (zeros < id.size() - 1 && id[zeros] == u'0')
        ++zeros;
    return id.sliced(zeros);
}

} // namespace

std::weak_ordering compareTwitterIDs(QStringView id, QStringView otherID)
{
    const QStringView digits = withoutLeadingZeros(id);
    const QStringView otherDigits = withoutLeadingZeros(otherID);
    if (digits.size() != otherDigits.size())
        return digits.size() <=> otherDigits.size();
    return digits.compare(otherDigits) <=> 0;
}

std::weak_ordering
compareNewestFirst(const QDateTime& date, QStringView id, const QDateTime& otherDate, QStringView otherID)
{
    const std::weak_ordering byDate = KRAdditions::compareDates(otherDate, date);
    return std::is_eq(byDate) ? compareTwitterIDs(otherID, id) : byDate;
}

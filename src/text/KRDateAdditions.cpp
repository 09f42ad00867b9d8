#include "text/KRDateAdditions.h"

#include "foundation/KRClock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <string_view>

using namespace Qt::StringLiterals;

namespace {

// The three letters of a name in one number.
constexpr quint64 packed(std::u16string_view name)
{
    return quint64(name[0]) << 32 | quint64(name[1]) << 16 | name[2];
}

constexpr std::array dayNames { packed(u"Mon"),
    packed(u"Tue"),
    packed(u"Wed"),
    packed(u"Thu"),
    packed(u"Fri"),
    packed(u"Sat"),
    packed(u"Sun") };
constexpr std::array monthNames { packed(u"Jan"),
    packed(u"Feb"),
    packed(u"Mar"),
    packed(u"Apr"),
    packed(u"May"),
    packed(u"Jun"),
    packed(u"Jul"),
    packed(u"Aug"),
    packed(u"Sep"),
    packed(u"Oct"),
    packed(u"Nov"),
    packed(u"Dec") };

// Reads a date from left to right. Written by hand because every status carries two dates and a locale-aware
// reader costs more than the rest of the record. After the first mismatch everything reads as nothing.
class DateReader {
public:
    explicit DateReader(QStringView text)
        : m_rest(text.utf16(), static_cast<size_t>(text.size()))
    {
    }

    void expect(std::u16string_view literal)
    {
        if (m_rest.substr(0, literal.size()) == literal)
            m_rest.remove_prefix(literal.size());
        else
            m_matches = false;
    }

    void readDayName() { _readName(dayNames); }
    void readMonth() { m_month = _readName(monthNames) + 1; }
    void readDay() { m_day = _readNumber(1, 2); }
    void readYear() { m_year = _readNumber(4, 4); }

    void readTime()
    {
        m_hour = _readNumber(2, 2);
        expect(u":");
        m_minute = _readNumber(2, 2);
        expect(u":");
        m_second = _readNumber(2, 2);
    }

    // "+hhmm" or "-hhmm", how far the local time is ahead of UTC.
    void readZone()
    {
        const bool isBehind = m_rest.substr(0, 1) == u"-";
        expect(isBehind ? u"-" : u"+");
        const int hours = _readNumber(2, 2);
        const int minutes = _readNumber(2, 2);
        m_matches = m_matches && hours <= 23 && minutes <= 59;
        m_offsetMinutes = (isBehind ? -1 : 1) * (hours * 60 + minutes);
    }

    [[nodiscard]] QDateTime date() const
    {
        namespace chrono = std::chrono;
        if (!m_matches || !m_rest.empty() || m_hour > 23 || m_minute > 59 || m_second > 59)
            return {};
        const chrono::year_month_day day { chrono::year(m_year),
            chrono::month(static_cast<unsigned>(m_month)),
            chrono::day(static_cast<unsigned>(m_day)) };
        if (!day.ok())
            return {};
        const auto time = chrono::sys_days(day) + chrono::hours(m_hour)
            + chrono::minutes(m_minute - m_offsetMinutes) + chrono::seconds(m_second);
        return QDateTime::fromMSecsSinceEpoch(
            chrono::duration_cast<chrono::milliseconds>(time.time_since_epoch()).count(),
            Qt::UTC);
    }

private:
    template <size_t Count>
    int _readName(const std::array<quint64, Count>& names)
    {
        const auto found
            = m_rest.size() < 3 ? names.end() : std::find(names.begin(), names.end(), packed(m_rest));
        if (found == names.end()) {
            m_matches = false;
            return 0;
        }
        m_rest.remove_prefix(3);
        return static_cast<int>(found - names.begin());
    }

    int _readNumber(size_t fewestDigits, size_t mostDigits)
    {
        int number = 0;
        size_t count = 0;
        while (count < mostDigits && count < m_rest.size() && m_rest[count] >= u'0' && m_rest[count] <= u'9')
            number = number * 10 + (m_rest[count++] - u'0');
        m_matches = m_matches && count >= fewestDigits;
        m_rest.remove_prefix(count);
        return number;
    }

    std::u16string_view m_rest;
    bool m_matches = true;
    int m_year = 0;
    int m_month = 0;
    int m_day = 0;
    int m_hour = 0;
    int m_minute = 0;
    int m_second = 0;
    int m_offsetMinutes = 0;
};

QString timeAgo(qint64 count, QLatin1String unit)
{
    return u"%1 %2%3 ago"_s.arg(QString::number(count), unit, count == 1 ? ""_L1 : "s"_L1);
}

} // namespace

namespace KRAdditions {

QDateTime dateValueFromHTTPLikeDate(QStringView text)
{
    DateReader reader(text);
    reader.readDayName();
    reader.expect(u" ");
    reader.readMonth();
    reader.expect(u" ");
    reader.readDay();
    reader.expect(u" ");
    reader.readTime();
    reader.expect(u" ");
    reader.readZone();
    reader.expect(u" ");
    reader.readYear();
    return reader.date();
}

QDateTime dateValueFromJSONTwitterDate(QStringView text)
{
    DateReader reader(text);
    reader.readDayName();
    reader.expect(u", ");
    reader.readDay();
    reader.expect(u" ");
    reader.readMonth();
    reader.expect(u" ");
    reader.readYear();
    reader.expect(u" ");
    reader.readTime();
    reader.expect(u" ");
    reader.readZone();
    return reader.date();
}

bool isAfter(const QDateTime& date, const QDateTime& other)
{
    return std::is_gt(compareDates(date, other));
}

bool isBefore(const QDateTime& date, const QDateTime& other)
{
    return std::is_lt(compareDates(date, other));
}

std::weak_ordering compareDates(const QDateTime& date, const QDateTime& other)
{
    const auto key = [](const QDateTime& value) {
        return value.isValid() ? value.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
    };
    return key(date) <=> key(other);
}

QString relativeTimeAgoString(const QDateTime& date)
{
    const qint64 seconds = std::max<qint64>(0, date.msecsTo(KRNow()) / 1000);
    if (seconds <= 59)
        return timeAgo(seconds, "second"_L1);
    const qint64 minutes = seconds / 60;
    if (minutes <= 59)
        return timeAgo(minutes, "minute"_L1);
    const qint64 hours = minutes / 60;
    if (hours <= 23)
        return timeAgo(hours, "hour"_L1);
    return timeAgo(hours / 24, "day"_L1);
}

} // namespace KRAdditions

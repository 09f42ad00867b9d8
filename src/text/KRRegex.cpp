#include "text/KRRegex.h"

#include "foundation/KRLog.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <unicode/uregex.h>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace {

void logError(UErrorCode error)
{
    KRLog(u"REGEX ERROR %1"_s.arg(QLatin1String(u_errorName(error))));
}

// The match the expression has just found.
std::optional<KRRange> currentMatch(URegularExpression* expression, bool found, UErrorCode error)
{
    if (U_FAILURE(error)) {
        logError(error);
        return std::nullopt;
    }
    if (!found)
        return std::nullopt;
    const int32_t start = uregex_start(expression, 0, &error);
    const int32_t end = uregex_end(expression, 0, &error);
    return KRRange { start, end - start };
}

} // namespace

void KRRegex::Close::operator()(URegularExpression* expression) const
{
    uregex_close(expression);
}

KRRegex::KRRegex(Expression expression)
    : m_expression(std::move(expression))
{
}

KRRegex::~KRRegex() = default;

KRRegex& KRRegex::forThread(QStringView pattern)
{
    thread_local std::unordered_map<QString, std::unique_ptr<KRRegex>> expressions;
    std::unique_ptr<KRRegex>& expression = expressions[pattern.toString()];
    if (!expression)
        expression.reset(new KRRegex(_copyOfCompiled(pattern)));
    return *expression;
}

KRRegex::Expression KRRegex::_copyOfCompiled(QStringView pattern)
{
    // Never destroyed: threads may still search while static objects are being destroyed.
    static auto* lock = new std::mutex;
    static auto* compiledExpressions = new std::unordered_map<QString, Expression>;
    std::scoped_lock guard(*lock);
    const auto [entry, isNew] = compiledExpressions->try_emplace(pattern.toString());
    UErrorCode error = U_ZERO_ERROR;
    if (isNew) {
        entry->second.reset(
            uregex_open(pattern.utf16(), static_cast<int32_t>(pattern.size()), 0, nullptr, &error));
    }
    Expression copy;
    if (entry->second) {
        copy.reset(uregex_clone(entry->second.get(), &error));
        // Under opaque bounds, the default, the edge of a range would pass for a boundary of a word.
        uregex_useTransparentBounds(copy.get(), true, &error);
    }
    if (U_FAILURE(error)) {
        logError(error);
        copy.reset();
    }
    return copy;
}

void KRRegex::setText(QStringView text)
{
    if (!m_expression)
        return;
    // ICU's lengths have 32 bits; a longer text is searched up to there.
    constexpr qsizetype longest = std::numeric_limits<int32_t>::max();
    const char16_t* units = text.isNull() ? u"" : text.utf16();
    UErrorCode error = U_ZERO_ERROR;
    uregex_setText(m_expression.get(), units, static_cast<int32_t>(std::min(text.size(), longest)), &error);
    if (U_FAILURE(error))
        logError(error);
}

std::optional<KRRange> KRRegex::firstMatch(qsizetype from)
{
    if (!m_expression)
        return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    const bool found = uregex_find64(m_expression.get(), from, &error);
    return currentMatch(m_expression.get(), found, error);
}

std::optional<KRRange> KRRegex::firstMatchInRange(KRRange range)
{
    if (!m_expression)
        return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    uregex_setRegion64(m_expression.get(), range.location, range.end(), &error);
    const bool found = uregex_findNext(m_expression.get(), &error);
    return currentMatch(m_expression.get(), found, error);
}

std::optional<KRRange> KRRegex::matchAt(qsizetype position)
{
    if (!m_expression)
        return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    const bool found = uregex_lookingAt64(m_expression.get(), position, &error);
    return currentMatch(m_expression.get(), found, error);
}

#pragma once

#include "foundation/KRRange.h"

#include <QStringView>

#include <memory>
#include <optional>

struct URegularExpression;

/// A compiled ICU regular expression, matched over UTF-16 code units without options. It holds the state of a
/// search and so belongs to one thread: forThread() gives each thread its own copy of a pattern that is
/// compiled once for the process. A pattern that does not compile and a search that fails are logged ("REGEX
/// ERROR …") and match nothing.
class KRRegex {
public:
    /// The calling thread's expression for the pattern; it lives as long as the thread. For the program's own
    /// patterns: they are never let go.
    static KRRegex& forThread(QStringView pattern);

    KRRegex(const KRRegex&) = delete;
    KRRegex& operator=(const KRRegex&) = delete;
    ~KRRegex();

    /// The text to search; it must stay in place while it is searched.
    void setText(QStringView text);
    /// The first match that begins at or behind the position. Tests for a boundary see the characters before
    /// it.
    [[nodiscard]] std::optional<KRRange> firstMatch(qsizetype from);
    /// The first match inside the range. Tests for a boundary see the characters around it.
    [[nodiscard]] std::optional<KRRange> firstMatchInRange(KRRange range);
    /// The match that begins exactly at the position.
    [[nodiscard]] std::optional<KRRange> matchAt(qsizetype position);

private:
    struct Close {
        void operator()(URegularExpression* expression) const;
    };
    using Expression = std::unique_ptr<URegularExpression, Close>;

    explicit KRRegex(Expression expression);
    static Expression _copyOfCompiled(QStringView pattern);

    Expression m_expression;
};

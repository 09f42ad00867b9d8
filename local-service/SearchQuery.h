#pragma once

#include "StatusStore.h"

#include <QString>

#include <vector>

namespace localservice {

// A search as people type it: words that must all occur, "words in a row", #tags, @names, from:name, to:name,
// each with a “-” before it to leave posts out, and OR between two of them.
class SearchQuery {
public:
    explicit SearchQuery(std::string_view text);

    [[nodiscard]] bool isEmpty() const { return m_groups.empty(); }
    [[nodiscard]] bool
    matches(const Status& status, const User& author, const std::string& answeredName) const;

private:
    struct Term {
        enum class Kind { Text, Hashtag, Mention, From, To };
        Kind kind = Kind::Text;
        bool isExcluded = false;
        QString text;
    };
    struct Subject {
        QString text;
        QString author;
        QString answered;
        std::vector<QString> mentions;
        std::vector<QString> hashtags;
    };

    static Term termFor(QString word, bool isQuoted);
    static bool matches(const Term& term, const Subject& subject);

    std::vector<std::vector<Term>> m_groups; // all groups must match, one term of each is enough
};

} // namespace localservice

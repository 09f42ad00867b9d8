#include "SearchQuery.h"

#include "Text.h"

#include <algorithm>
#include <utility>

namespace localservice {

namespace {

QString folded(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toCaseFolded();
}

struct Word {
    QString text;
    bool isQuoted = false;
};

std::vector<Word> wordsOf(const QString& query)
{
    std::vector<Word> words;
    Word word;
    bool isInside = false;
    const auto finish = [&] {
        if (!word.text.isEmpty())
            words.push_back(word);
        word = {};
    };
    for (const QChar c : query) {
        if (c == u'"') {
            isInside = !isInside;
            word.isQuoted = true;
        } else if (c.isSpace() && !isInside) {
            finish();
        } else {
            word.text += c;
        }
    }
    finish();
    return words;
}

} // namespace

SearchQuery::SearchQuery(std::string_view text)
{
    bool joinsPrevious = false;
    for (const Word& word : wordsOf(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())))) {
        if (word.text == QStringLiteral("OR") && !word.isQuoted) {
            joinsPrevious = !m_groups.empty();
            continue;
        }
        Term term = termFor(word.text.toCaseFolded(), word.isQuoted);
        if (!std::exchange(joinsPrevious, false))
            m_groups.emplace_back();
        m_groups.back().push_back(std::move(term));
    }
}

SearchQuery::Term SearchQuery::termFor(QString word, bool isQuoted)
{
    Term term;
    if (word.size() > 1 && word.startsWith(u'-')) {
        term.isExcluded = true;
        word.remove(0, 1);
    }
    static const std::pair<QString, Term::Kind> prefixes[] = { { QStringLiteral("#"), Term::Kind::Hashtag },
        { QStringLiteral("@"), Term::Kind::Mention },
        { QStringLiteral("from:"), Term::Kind::From },
        { QStringLiteral("to:"), Term::Kind::To } };
    for (const auto& [prefix, kind] : prefixes) {
        if (!isQuoted && word.size() > prefix.size() && word.startsWith(prefix)) {
            term.kind = kind;
            word.remove(0, prefix.size());
            break;
        }
    }
    term.text = word;
    return term;
}

bool SearchQuery::matches(const Term& term, const Subject& subject)
{
    const auto contains = [&](const std::vector<QString>& list) {
        return std::find(list.begin(), list.end(), term.text) != list.end();
    };
    switch (term.kind) {
    case Term::Kind::Text:
        return subject.text.contains(term.text);
    case Term::Kind::Hashtag:
        return contains(subject.hashtags);
    case Term::Kind::Mention:
        return contains(subject.mentions);
    case Term::Kind::From:
        return subject.author == term.text;
    case Term::Kind::To:
        return subject.answered == term.text;
    }
    return false;
}

bool SearchQuery::matches(const Status& status, const User& author, const std::string& answeredName) const
{
    Subject subject { folded(status.text), folded(author.screenName), folded(answeredName), {}, {} };
    for (const TextPiece& piece : piecesOfText(status.text)) {
        if (piece.kind == TextPiece::Kind::Mention)
            subject.mentions.push_back(folded(piece.text).mid(1));
        else if (piece.kind == TextPiece::Kind::Hashtag)
            subject.hashtags.push_back(folded(piece.text).mid(1));
    }
    return !isEmpty() && std::all_of(m_groups.begin(), m_groups.end(), [&](const std::vector<Term>& group) {
        return std::any_of(group.begin(), group.end(), [&](const Term& term) {
            return matches(term, subject) != term.isExcluded;
        });
    });
}

} // namespace localservice

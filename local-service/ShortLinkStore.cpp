#include "ShortLinkStore.h"

namespace localservice {

std::string codeForNumber(std::int64_t number)
{
    // No “z”: at the end of a link it marks a movie.
    static constexpr std::string_view alphabet = "abcdefghijkmnopqrstuvwxyABCDEFGHJKLMNPQRSTUVWXY23456789";
    // An odd factor permutes the numbers below a power of two.
    std::uint64_t rest = (static_cast<std::uint64_t>(number) * 1'140'071'481U + 777'767'777U) & 0x7FFFFFFFU;
    std::string code;
    do {
        code += alphabet[rest % alphabet.size()];
        rest /= alphabet.size();
    } while (rest > 0);
    return code;
}

std::string ShortLinkStore::codeFor(std::string_view service, std::string_view target)
{
    Statement known(m_database, "SELECT code FROM short_links WHERE service = ? AND target = ?");
    if (known.bind(service, target).step())
        return known.nextText();
    Statement count(m_database, "SELECT count(*) FROM short_links");
    std::string code = codeForNumber(count.step() ? count.nextInteger() : 0);
    Statement(m_database, "INSERT INTO short_links VALUES (?, ?, ?)").bind(service, code, target).run();
    return code;
}

std::optional<std::string> ShortLinkStore::target(std::string_view service, std::string_view code)
{
    Statement row(m_database, "SELECT target FROM short_links WHERE service = ? AND code = ?");
    return row.bind(service, code).step() ? std::optional(row.nextText()) : std::nullopt;
}

} // namespace localservice

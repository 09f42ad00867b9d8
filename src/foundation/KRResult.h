#pragma once

#include "foundation/KRError.h"

#include <optional>
#include <utility>
#include <variant>

/// A value or the error that stands in its place. Asking for the one that is not there is a programming
/// error.
template <class T>
class [[nodiscard]] KRResult {
public:
    using Value = T;

    KRResult(T value)
        : m_content(std::in_place_index<0>, std::move(value))
    {
    }
    KRResult(KRError error)
        : m_content(std::in_place_index<1>, std::move(error))
    {
    }

    [[nodiscard]] bool isError() const { return m_content.index() == 1; }
    const KRError& error() const { return *std::get_if<1>(&m_content); }
    const T& value() const& { return *std::get_if<0>(&m_content); }
    T& value() & { return *std::get_if<0>(&m_content); }
    T&& value() && { return std::move(*std::get_if<0>(&m_content)); }

private:
    std::variant<T, KRError> m_content;
};

/// Success without a value, or an error.
template <>
class [[nodiscard]] KRResult<void> {
public:
    using Value = void;

    KRResult() = default;
    KRResult(KRError error)
        : m_error(std::move(error))
    {
    }

    [[nodiscard]] bool isError() const { return m_error.has_value(); }
    const KRError& error() const { return *m_error; }

private:
    std::optional<KRError> m_error;
};

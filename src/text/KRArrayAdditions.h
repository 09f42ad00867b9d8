#pragma once

#include <QHash>
#include <QList>

#include <algorithm>
#include <compare>
#include <concepts>
#include <functional>
#include <type_traits>
#include <unordered_set>
#include <utility>

/// Operations on lists. Each answers a new list and leaves its argument as it is; any thread.
///
/// Elements that are pointers to objects are compared by what they point to: in order through the object's
/// `compare(other)`, for equality through its `isEqual(other)`. Other elements are compared with `<` and
/// `==`. Finding duplicates takes linear time where there is a hash, equal for equal elements: the object's
/// `hashValue()`, or qHash().
namespace KRAdditions {

namespace ArrayDetails {

template <class Element>
concept PointsToComparable = requires(const Element& a, const Element& b)
{
    {
        std::is_lt(a->compare(*b))
        } -> std::convertible_to<bool>;
};

template <class Element>
concept PointsToEquatable = requires(const Element& a, const Element& b)
{
    {
        a->isEqual(*b)
        } -> std::convertible_to<bool>;
};

template <class Element>
concept PointsToHashable = requires(const Element& a)
{
    {
        a->hashValue()
        } -> std::convertible_to<size_t>;
};

template <class Element>
size_t hashOf(const Element& element)
{
    if constexpr (PointsToHashable<Element>)
        return element->hashValue();
    else
        return qHash(element, size_t(0));
}

template <class Element>
bool areEqual(const Element& a, const Element& b)
{
    if constexpr (PointsToEquatable<Element>)
        return a->isEqual(*b);
    else
        return a == b;
}

/// Whether a mapped value counts as none: a null pointer or text, an invalid date, an empty optional.
template <class Value>
bool isNone(const Value& value)
{
    if constexpr (requires { value.isNull(); })
        return value.isNull();
    else if constexpr (requires { value == nullptr; })
        return value == nullptr;
    else if constexpr (requires { value.has_value(); })
        return !value.has_value();
    else
        return false;
}

template <class Value>
struct Unwrapped {
    using Type = Value;
    static Value& of(Value& value) { return value; }
};

template <class Value>
requires requires(Value value)
{
    typename Value::value_type;
    value.has_value();
}
struct Unwrapped<Value> {
    using Type = typename Value::value_type;
    static Type& of(Value& value) { return *value; }
};

} // namespace ArrayDetails

/// Ascending in the elements' natural order; equal elements keep their places.
template <class Element>
[[nodiscard]] QList<Element> sortedArray(QList<Element> list)
{
    std::stable_sort(list.begin(), list.end(), [](const Element& a, const Element& b) {
        if constexpr (ArrayDetails::PointsToComparable<Element>)
            return std::is_lt(a->compare(*b));
        else
            return a < b;
    });
    return list;
}

/// Each element at its first occurrence only.
template <class Element>
[[nodiscard]] QList<Element> arrayWithoutDuplicates(const QList<Element>& list)
{
    using namespace ArrayDetails;
    QList<Element> unique;
    if constexpr (PointsToEquatable<Element> && !PointsToHashable<Element>) {
        for (const Element& element : list) {
            const auto isSame = [&element](const Element& other) { return areEqual(element, other); };
            if (std::none_of(unique.cbegin(), unique.cend(), isSame))
                unique.append(element);
        }
    } else {
        const auto hash = [](const Element* element) { return hashOf(*element); };
        const auto isSame = [](const Element* a, const Element* b) { return areEqual(*a, *b); };
        std::unordered_set<const Element*, decltype(hash), decltype(isSame)> seen(
            static_cast<size_t>(list.size()),
            hash,
            isSame);
        for (const Element& element : list) {
            if (seen.insert(&element).second)
                unique.append(element);
        }
    }
    return unique;
}

/// Calls `function(element, arguments…)` for each element in order. The function may be a method of the
/// element's class; the arguments serve as its context.
template <class Element, class Function, class... Arguments>
void applyFunction(const QList<Element>& list, Function&& function, const Arguments&... arguments)
{
    for (const Element& element : list)
        std::invoke(function, element, arguments...);
}

/// The results of `function(element, arguments…)` in order. Results that are none (null, invalid, an empty
/// optional) are left out; optionals come out unwrapped.
template <class Element, class Function, class... Arguments>
[[nodiscard]] auto mapFunction(const QList<Element>& list, Function&& function, const Arguments&... arguments)
{
    using Value = std::decay_t<std::invoke_result_t<Function&, const Element&, const Arguments&...>>;
    using Unwrapped = ArrayDetails::Unwrapped<Value>;
    QList<typename Unwrapped::Type> mapped;
    mapped.reserve(list.size());
    for (const Element& element : list) {
        Value value = std::invoke(function, element, arguments...);
        if (!ArrayDetails::isNone(value))
            mapped.append(std::move(Unwrapped::of(value)));
    }
    return mapped;
}

/// The elements for which the predicate (which may be a method of the element's class) answers true.
template <class Element, class Predicate>
[[nodiscard]] QList<Element> filter(const QList<Element>& list, Predicate&& predicate)
{
    QList<Element> kept;
    for (const Element& element : list) {
        if (std::invoke(predicate, element))
            kept.append(element);
    }
    return kept;
}

/// The elements of all lists, list after list.
template <class Element>
[[nodiscard]] QList<Element> arrayByConcatenatingArrays(const QList<QList<Element>>& lists)
{
    QList<Element> all;
    for (const QList<Element>& list : lists)
        all.append(list);
    return all;
}

} // namespace KRAdditions

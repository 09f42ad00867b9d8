#include "support/KRTest.h"
#include "text/KRArrayAdditions.h"

#include <compare>

using namespace KRAdditions;

namespace {

// A record: ordered by one field, equal by another.
struct Record {
    int order;
    int identity;

    std::weak_ordering compare(const Record& other) const { return order <=> other.order; }
    bool isEqual(const Record& other) const { return identity == other.identity; }
    size_t hashValue() const { return static_cast<size_t>(identity); }
    int sumWith(int a, int b) const { return order + a + b; }
    bool isEven() const { return order % 2 == 0; }
};
using RecordPtr = std::shared_ptr<Record>;

QList<int> ordersOf(const QList<RecordPtr>& records)
{
    return mapFunction(records, &Record::order);
}

TEST(ArrayAdditions, SortingIsStableAndFollowsTheElementsOrder)
{
    EXPECT_EQ(sortedArray(QList<QString> { u"b"_s, u"C"_s, u"a"_s }),
        (QList<QString> { u"C"_s, u"a"_s, u"b"_s }));

    QList<RecordPtr> records;
    for (int i = 0; i < 40; ++i)
        records.append(std::make_shared<Record>(Record { i % 3, i }));
    const QList<RecordPtr> sorted = sortedArray(records);
    for (qsizetype i = 1; i < sorted.size(); ++i) {
        EXPECT_LE(sorted[i - 1]->order, sorted[i]->order);
        if (sorted[i - 1]->order == sorted[i]->order) {
            EXPECT_LT(sorted[i - 1]->identity, sorted[i]->identity);
        }
    }
}

TEST(ArrayAdditions, DuplicatesKeepTheirFirstPlace)
{
    EXPECT_EQ(arrayWithoutDuplicates(QList<QString> { u"b"_s, u"a"_s, u"b"_s, u"c"_s, u"a"_s }),
        (QList<QString> { u"b"_s, u"a"_s, u"c"_s }));
    const auto record = [](int order, int identity) {
        return std::make_shared<Record>(Record { order, identity });
    };
    EXPECT_EQ(ordersOf(arrayWithoutDuplicates(QList<RecordPtr> { record(1, 7), record(2, 8), record(3, 7) })),
        (QList<int> { 1, 2 }));
}

TEST(ArrayAdditions, MappingLeavesOutWhatIsNone)
{
    const QList<int> numbers { 1, 2, 3, 4 };
    const auto halfOfEven
        = [](int number) { return number % 2 == 0 ? std::optional(number / 2) : std::nullopt; };
    EXPECT_EQ(mapFunction(numbers, halfOfEven), (QList<int> { 1, 2 }));
    EXPECT_TRUE(mapFunction(numbers, [](int) { return RecordPtr(); }).isEmpty());
    EXPECT_TRUE(mapFunction(numbers, [](int) { return QString(); }).isEmpty());
    EXPECT_EQ(mapFunction(
                  numbers,
                  [](int number, int factor) { return number * factor; },
                  10),
        (QList<int> { 10, 20, 30, 40 }));

    const QList<RecordPtr> records { std::make_shared<Record>(Record { 1, 1 }),
        std::make_shared<Record>(Record { 2, 2 }) };
    EXPECT_EQ(mapFunction(records, &Record::sumWith, 10, 100), (QList<int> { 111, 112 }));
    EXPECT_EQ(ordersOf(filter(records, &Record::isEven)), (QList<int> { 2 }));
    QList<int> visited;
    applyFunction(
        numbers,
        [&visited](int number, int offset) { visited.append(number + offset); },
        5);
    EXPECT_EQ(visited, (QList<int> { 6, 7, 8, 9 }));
    EXPECT_EQ(arrayByConcatenatingArrays(QList<QList<int>> { { 1 }, {}, { 2, 3 } }),
        (QList<int> { 1, 2, 3 }));
}

} // namespace

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/firefox/internal/StateRecord.h"

#include "tests/support/FirefoxState.h"

namespace browsersweep {
namespace {

using tests::stateSlot;
using Records = std::vector<StateRecord>;

constexpr std::size_t valueSize = 24;
constexpr std::size_t slotSize = 286;

Date day(double number) {
    return dateFrom1970Seconds(number * 86400);
}

TEST(StateRecord, aSlotIsAKeyAValueAndADay) {
    const std::string one = stateSlot("www.a.com", "1796377579839,1,1", valueSize, 20779);
    const std::string other = stateSlot(std::string(256, 'k'), std::string(24, 'v'), valueSize, 1);
    ASSERT_EQ(one.size(), slotSize);
    EXPECT_EQ(one.substr(0, 17), std::string("\x04\x3B\x00\x01\x51\x2Bwww.a.com\0\0", 17));
    const std::string file = one + other;
    EXPECT_EQ(stateRecordsInSlots(file, valueSize),
              (Records{{one, "www.a.com", "1796377579839,1,1", day(20779), false},
                       {other, std::string(256, 'k'), std::string(24, 'v'), day(1), false}}));
}

TEST(StateRecord, aSlotOfZerosIsUnused) {
    const std::string empty(slotSize, '\0');
    EXPECT_EQ(stateRecordsInSlots(empty, valueSize), (Records{{empty, {}, {}, {}, true}}));
    EXPECT_EQ(stateRecordsInSlots("", valueSize), Records{});
}

TEST(StateRecord, aSlotWithAnyOtherSumIsDamaged) {
    const std::string whole = stateSlot("www.a.com", "value", valueSize);
    for (std::size_t place = 0; place < whole.size(); ++place) {
        std::string damaged = whole;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x40);
        EXPECT_EQ(stateRecordsInSlots(damaged, valueSize), (Records{{damaged, {}, {}, {}, false}}))
            << place;
    }
}

TEST(StateRecord, whatWasCutOffIsDamagedAndHidesNothingBeforeIt) {
    const std::string whole = stateSlot("www.a.com", "value", valueSize);
    for (std::size_t size = 1; size < slotSize; ++size) {
        const std::string file = whole + whole.substr(0, size);
        const Records records = stateRecordsInSlots(file, valueSize);
        ASSERT_EQ(records.size(), 2U);
        EXPECT_EQ(records[0].key, "www.a.com");
        EXPECT_EQ(records[1], (StateRecord{file.substr(slotSize), {}, {}, {}, false})) << size;
    }
}

TEST(StateRecord, aFileOfOtherSlotsIsDamagedThroughout) {
    std::string file;
    for (const std::string key : {"www.a.com", "b.com", "c.com", "d.com", "e.com"}) {
        file += stateSlot(key, "the quick brown fox jumps over the lazy " + key, 48);
    }
    for (const StateRecord& record : stateRecordsInSlots(file, valueSize)) {
        EXPECT_EQ(record.key, "");
    }
}

TEST(StateRecord, aLineIsAKeyTwoNumbersAndAValueInWhichTabsMayBe) {
    const std::string_view file = "www.a.com:HSTS\t3\t17000\t1,2\t3\nb.com\t0\t0\t";
    EXPECT_EQ(stateRecordsInLines(file), (Records{{"www.a.com:HSTS\t3\t17000\t1,2\t3\n",
                                                   "www.a.com:HSTS", "1,2\t3", day(17000), false},
                                                  {"b.com\t0\t0\t", "b.com", "", {}, false}}));
}

TEST(StateRecord, aLineOfAnotherFormIsDamagedAndAnEmptyOneUnused) {
    EXPECT_EQ(stateRecordsInLines("\nb.com\t1\t17000\nc.com"),
              (Records{{"\n", {}, {}, {}, true},
                       {"b.com\t1\t17000\n", {}, {}, {}, false},
                       {"c.com", {}, {}, {}, false}}));
    EXPECT_EQ(stateRecordsInLines("k\t1\t99999999999999999999\tv\nk\t1\t-1\tv"),
              (Records{{"k\t1\t99999999999999999999\tv\n", "k", "v", {}, false},
                       {"k\t1\t-1\tv", "k", "v", {}, false}}));
    EXPECT_EQ(stateRecordsInLines(""), Records{});
}

TEST(StateRecord, emptyLinesInARowAreOneUnusedPlaceAndKeepTheirBytes) {
    EXPECT_EQ(stateRecordsInLines("\n\n\nc.com\n\n"), (Records{{"\n\n\n", {}, {}, {}, true},
                                                               {"c.com\n", {}, {}, {}, false},
                                                               {"\n", {}, {}, {}, true}}));
}

TEST(StateRecord, aLineLongerThanFirefoxWritesIsDamaged) {
    const std::string start = "www.a.com\t1\t17000\t";
    const std::string longest = start + std::string(256 + 1024 + 32 - start.size(), 'v');
    EXPECT_EQ(stateRecordsInLines(longest).at(0).key, "www.a.com");
    const std::string longer = longest + "v\n";
    EXPECT_EQ(
        stateRecordsInLines(longer + longest + '\n'),
        (Records{{longer, {}, {}, {}, false},
                 {longest + '\n', "www.a.com", longest.substr(start.size()), day(17000), false}}));
}

}  // namespace
}  // namespace browsersweep

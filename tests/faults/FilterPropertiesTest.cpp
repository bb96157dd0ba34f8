#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/documents/internal/DecimalText.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/Database.h"
#include "tests/support/FirefoxDatabases.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::Database;
using tests::TemporaryFolder;

using Filters = std::vector<CleanableDataFilter>;
using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;

/** A row of a history, the address and time of which may be missing. */
struct HistoryRow {
    std::optional<std::string> url;
    std::optional<double> time;
};

// Few letters and few numbers, so that patterns hit and bounds fall on rows.
std::string shortText(int longest) {
    return *rc::gen::resize(
        longest, rc::gen::container<std::string>(rc::gen::element('a', 'b', 'A', '.', '/')));
}

double smallTime() {
    return *rc::gen::inRange(-4, 5) * 0.5;
}

HistoryRow randomRow() {
    const auto url = *rc::gen::inRange(0, 8) == 0 ? std::nullopt : std::optional(shortText(6));
    const auto time = *rc::gen::inRange(0, 8) == 0 ? std::nullopt : std::optional(smallTime());
    return {url, time};
}

template <typename Make>
auto some(int most, Make make) {
    std::vector<decltype(make())> list;
    for (int count = *rc::gen::inRange(0, most + 1); count > 0; --count) {
        list.push_back(make());
    }
    return list;
}

std::optional<Patterns> randomPatterns() {
    if (*rc::gen::arbitrary<bool>()) {
        return std::nullopt;
    }
    const auto texts = some(3, [] { return shortText(2); });
    return Patterns{*rc::gen::element(Patterns::Rule::include, Patterns::Rule::exclude),
                    std::set<std::string>(texts.begin(), texts.end())};
}

std::optional<Date> randomBound() {
    return *rc::gen::arbitrary<bool>() ? std::optional(dateFromReferenceSeconds(smallTime()))
                                       : std::nullopt;
}

std::optional<Dates> randomDates() {
    if (*rc::gen::arbitrary<bool>()) {
        return std::nullopt;
    }
    const auto rule = *rc::gen::element(Dates::Rule::insideRange, Dates::Rule::outsideRange);
    const auto start = randomBound();
    return Dates{rule, start, randomBound()};
}

Filters randomFilters() {
    return some(3, [] {
        auto patterns = randomPatterns();
        return CleanableDataFilter(std::move(patterns), randomDates());
    });
}

std::string lowercase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/** What SQL's three values of truth come to: nothing is its "unknown". */
using Truth = std::optional<bool>;

Truth both(Truth a, Truth b) {
    if (a == false || b == false) {
        return false;
    }
    return a && b ? Truth(true) : std::nullopt;
}

Truth either(Truth a, Truth b) {
    if (a == true || b == true) {
        return true;
    }
    return a && b ? Truth(false) : std::nullopt;
}

Truth contains(const std::optional<std::string>& text, const std::string& pattern) {
    return text ? Truth(lowercase(*text).find(lowercase(pattern)) != std::string::npos)
                : std::nullopt;
}

Truth passes(const std::optional<double>& time, const Dates& dates) {
    return time ? Truth(dates.matches(dateFromReferenceSeconds(*time))) : std::nullopt;
}

/** The rule for databases, straightforward: every exclusion, some inclusion, some range. */
bool isSelected(const HistoryRow& row, const Filters& filters) {
    Truth excluded = true;
    Truth included;
    Truth dated;
    bool hasInclusions = false;
    bool hasDates = false;
    for (const CleanableDataFilter& filter : filters) {
        for (const std::string& pattern : filter.patterns()) {
            const Truth hit = contains(row.url, pattern);
            if (filter.rule() == CleanableDataFilter::Rule::exclude) {
                excluded = both(excluded, hit ? Truth(!*hit) : std::nullopt);
            } else {
                included = hasInclusions ? either(included, hit) : hit;
                hasInclusions = true;
            }
        }
        if (const auto& dates = filter.dates(); dates && (dates->startDate || dates->endDate)) {
            dated = hasDates ? either(dated, passes(row.time, *dates)) : passes(row.time, *dates);
            hasDates = true;
        }
    }
    return excluded == true && (!hasInclusions || included == true) && (!hasDates || dated == true);
}

std::int64_t selectedCount(const std::vector<HistoryRow>& rows, const Filters& filters) {
    return std::count_if(rows.begin(), rows.end(),
                         [&](const HistoryRow& row) { return isSelected(row, filters); });
}

std::string literal(const std::optional<std::string>& text) {
    return text ? "'" + *text + "'" : "NULL";
}

std::string literal(const std::optional<double>& number) {
    return number ? decimalText(*number) : "NULL";
}

void insert(const Database& database, const std::string& table,
            const std::vector<std::string>& values) {
    std::string statement = "INSERT INTO " + table + " VALUES (";
    for (const std::string& value : values) {
        statement.append(&value == &values.front() ? "" : ", ").append(value);
    }
    database.execute(statement.append(");"));
}

/** A time as Firefox stores it. */
std::string microseconds(double secondsSince2001) {
    const Date date = dateFromReferenceSeconds(secondsSince2001);
    return std::to_string(static_cast<std::int64_t>(secondsSince1970(date) * 1e6));
}

std::int64_t itemCount(const CleanableData& item, const Filters& filters) {
    return item.size(filters).itemCount.value;
}

/** What holds for every item: sizing twice, cleaning twice, and what was counted is what goes. */
void checkSizeAndClean(const CleanableData& item, const Filters& filters, std::int64_t expected) {
    const std::int64_t all = itemCount(item, {});
    const CleanableDataSize size = item.size(filters);
    RC_ASSERT(size.itemCount == CleanableDataSize::Measurement(expected));
    RC_ASSERT(size == item.size(filters));
    item.clean(filters);
    RC_ASSERT(itemCount(item, filters) == 0);
    RC_ASSERT(itemCount(item, {}) == all - expected);
    item.clean(filters);
    RC_ASSERT(itemCount(item, {}) == all - expected);
}

/** One folder for all rounds of a property. */
struct Fixture {
    TemporaryFolder home{tests::folderInMemory()};
    std::shared_ptr<const FileManager> manager = tests::GuardedFileManager::forFixture(home);
    fs::path file = home.makeFolder("data") / "file";
};

TEST(FilterProperties, aTablesRowsAreSelectedAsAStraightforwardEvaluatorSelectsThem) {
    const Fixture fixture;
    EXPECT_TRUE(rc::check([&] {
        fs::remove(fixture.file);
        const auto rows = some(12, randomRow);
        {
            const Database made(fixture.file);
            made.execute("BEGIN; CREATE TABLE visits (url TEXT, time REAL);");
            for (const HistoryRow& row : rows) {
                insert(made, "visits", {literal(row.url), literal(row.time)});
            }
            made.execute("COMMIT;");
        }
        const auto encode = [](const Date& date) { return decimalText(referenceSeconds(date)); };
        const CleanableSQLiteDatabase item(
            fixture.file,
            {{"visits",
              SQLiteStatementComponents::ColumnsForFiltering{"url", {{"time", encode}}},
              {}}},
            fixture.manager);
        const Filters filters = randomFilters();
        checkSizeAndClean(item, filters, selectedCount(rows, filters));
    }));
}

TEST(FilterProperties, safarisVisitsAreSelectedAsAStraightforwardEvaluatorSelectsThem) {
    const Fixture fixture;
    EXPECT_TRUE(rc::check([&] {
        fs::remove(fixture.file);
        const auto rows = some(12, randomRow);
        {
            const Database made(fixture.file);
            made.execute(
                "BEGIN; CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT);"
                "CREATE TABLE history_visits (id INTEGER PRIMARY KEY,"
                " history_item INTEGER, visit_time REAL);");
            for (std::size_t index = 0; index < rows.size(); ++index) {
                const std::string id = std::to_string(index + 1);
                insert(made, "history_items", {id, literal(rows[index].url)});
                insert(made, "history_visits", {id, id, literal(rows[index].time)});
            }
            made.execute("COMMIT;");
        }
        const SafariHistoryCleanableDatabase item(fixture.file, fixture.manager);
        const Filters filters = randomFilters();
        const std::int64_t expected = selectedCount(rows, filters);
        checkSizeAndClean(item, filters, expected);
        RC_ASSERT(Database(fixture.file).number("SELECT COUNT(*) FROM history_items") ==
                  static_cast<std::int64_t>(rows.size()) - expected);
    }));
}

TEST(FilterProperties, aFoldersFilesAreCountedAsManyAsAreDeleted) {
    const Fixture fixture;
    EXPECT_TRUE(rc::check([&] {
        fs::remove_all(fixture.home / "cache");
        for (int count = *rc::gen::inRange(0, 12); count > 0; --count) {
            std::string name = "f" + shortText(6);
            std::replace(name.begin(), name.end(), '/', '-');
            fixture.home.write(fs::path("cache") / (count % 2 == 0 ? "" : "sub") / name, name);
        }
        const CleanableDirectory item(fixture.home.path() / "cache", true, {}, fixture.manager);
        const Filters filters = randomFilters();
        checkSizeAndClean(item, filters, itemCount(item, filters));
    }));
}

TEST(FilterProperties, bookmarksSurviveEveryCleanOfFirefoxsHistory) {
    const Fixture fixture;
    const fs::path places =
        fixture.home.path() / "Library/Application Support/Firefox/p/places.sqlite";
    const FirefoxProfile profile("p", true, true, "Firefox/p", fixture.manager);
    EXPECT_TRUE(rc::check([&] {
        fs::remove(places);
        {
            const Database made = tests::makePlacesDatabase(places);
            made.execute("PRAGMA synchronous = OFF; BEGIN;");
            for (int id = 1; id <= 8; ++id) {
                const std::string number = std::to_string(id);
                const bool isBookmarked = *rc::gen::arbitrary<bool>();
                insert(made, "moz_places (id, url, foreign_count, last_visit_date)",
                       {number, literal(std::optional(shortText(5))), isBookmarked ? "1" : "0",
                        microseconds(smallTime())});
                if (isBookmarked) {
                    insert(made, "moz_bookmarks (id, type, fk, title)",
                           {number, "1", number, "'b'"});
                }
            }
            made.execute("COMMIT;");
        }
        const auto before = profile.bookmarks();
        const auto data = profile.cleanableData();
        data.find(CleanableDataCategory::history)->clean(randomFilters());
        RC_ASSERT(profile.bookmarks() == before);
        data.find(CleanableDataCategory::history)->clean();
        RC_ASSERT(profile.bookmarks() == before);
    }));
}

}  // namespace
}  // namespace browsersweep

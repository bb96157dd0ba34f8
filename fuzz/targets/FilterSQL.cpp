#include <cstdint>
#include <string>
#include <vector>

#include "browsersweep/documents/internal/DecimalText.h"
#include "browsersweep/sqlite/SQLiteConnection.h"
#include "browsersweep/sqlite/SQLiteStatementComponents.h"

#include "cli/Filters.h"
#include "cli/UsageError.h"
#include "fuzz/targets/Input.h"
#include "fuzz/targets/Rule.h"
#include "fuzz/targets/Targets.h"

namespace browsersweep::fuzz {
namespace {

using Dates = CleanableDataFilter::Dates;
using Rule = CleanableDataFilter::Rule;

/** The patterns are those that the host program lets through to the SQL text. */
std::optional<CleanableDataFilter::Patterns> patterns(Input& input) {
    if (!input.flag()) {
        return std::nullopt;
    }
    CleanableDataFilter::Patterns chosen{input.flag()
                                             ? CleanableDataFilter::Patterns::Rule::include
                                             : CleanableDataFilter::Patterns::Rule::exclude,
                                         {}};
    for (int count = input.byte() % 4; count > 0; --count) {
        const std::string pattern = input.text();
        try {
            chosen.patterns.merge(std::set(cli::patternFilter(Rule::include, pattern).patterns()));
        } catch (const cli::UsageError&) {
            continue;
        }
    }
    return chosen;
}

std::optional<Date> bound(Input& input) {
    return input.flag() ? std::optional(dateFromReferenceSeconds(input.number())) : std::nullopt;
}

std::optional<Dates> dates(Input& input) {
    if (!input.flag()) {
        return std::nullopt;
    }
    const auto rule = input.flag() ? Dates::Rule::insideRange : Dates::Rule::outsideRange;
    const auto start = bound(input);
    const auto end = bound(input);
    return Dates{rule, start, end};
}

std::vector<CleanableDataFilter> filters(Input& input) {
    std::vector<CleanableDataFilter> list;
    for (int count = input.byte() % 4; count > 0; --count) {
        auto byPattern = patterns(input);
        const auto byDate = dates(input);
        list.emplace_back(std::move(byPattern), byDate);
    }
    return list;
}

SQLiteStatementComponents table() {
    const auto encode = [](const Date& date) {
        const double seconds = referenceSeconds(date);
        // No database holds such a date, and SQL has no text for it.
        if (!(seconds > -1e15 && seconds < 1e15)) {
            throw std::range_error("no date of a database");
        }
        return decimalText(seconds);
    };
    return {
        "visits", SQLiteStatementComponents::ColumnsForFiltering{"url", {{"time", encode}}}, {}};
}

constexpr std::int64_t rowCount = 6;

SQLiteConnection filledDatabase() {
    SQLiteConnection database(":memory:");
    for (const char* statement :
         {"CREATE TABLE visits (url TEXT, time REAL)", "CREATE TABLE precious (text TEXT)",
          "INSERT INTO precious VALUES ('kept'), ('kept too')",
          "INSERT INTO visits VALUES ('https://example.com/', 700000000.0), ('http://x.org', 0.0),"
          "('', -1.5), (NULL, NULL), ('münchen.de', 1e9), ('a\"b;--', 1.0)"}) {
        database.evaluate(statement, ExecuteEvaluator{});
    }
    return database;
}

/** Takes back what the work did. A statement that ends the transaction is an error here. */
template <typename Work>
void undoing(const SQLiteConnection& database, Work work) {
    database.evaluate("BEGIN", ExecuteEvaluator{});
    try {
        work();
    } catch (...) {
        database.evaluate("ROLLBACK", ExecuteEvaluator{});
        throw;
    }
    database.evaluate("ROLLBACK", ExecuteEvaluator{});
}

void checkSelection(const SQLiteConnection& database,
                    const std::vector<CleanableDataFilter>& list) {
    const SQLiteStatementComponents visits = table();
    const auto count = [&](const std::string& sql) {
        return database.evaluate(sql, CountEvaluator{});
    };
    const auto before = count("SELECT COUNT(*) FROM visits");
    require(before == rowCount, "what an input did is taken back");
    const auto selected = count(visits.sql("SELECT COUNT(*)", list));
    database.evaluate(visits.sql("DELETE", list), ExecuteEvaluator{});
    require(count("SELECT COUNT(*) FROM visits") == before - selected,
            "exactly the counted rows are deleted");
    require(count(visits.sql("SELECT COUNT(*)", list)) == 0, "no selected row stays");
    require(count("SELECT COUNT(*) FROM precious WHERE text LIKE 'kept%'") == 2,
            "no other table is touched");
    require(!list.empty() || selected == before, "without filters every row is selected");
}

}  // namespace

void filterSQL(BytesView input) {
    // One for all inputs: making it takes much longer than what an input does with it.
    static const SQLiteConnection database = filledDatabase();
    Input values(input);
    const auto list = filters(values);
    undoing(database, [&] { checkSelection(database, list); });
}

}  // namespace browsersweep::fuzz

#include "cli/Filters.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include "browsersweep/hosting/PatternFault.h"

#include "cli/Dates.h"
#include "cli/LocalDays.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;
using JSON = nlohmann::ordered_json;

constexpr std::array patternRules{
    std::pair{std::string_view("include"), Patterns::Rule::include},
    std::pair{std::string_view("exclude"), Patterns::Rule::exclude},
};
constexpr std::array dateRules{
    std::pair{std::string_view("insideRange"), Dates::Rule::insideRange},
    std::pair{std::string_view("outsideRange"), Dates::Rule::outsideRange},
};

void requirePattern(std::string_view pattern) {
    const auto fault = patternFault(pattern);
    if (!fault) {
        return;
    }
    switch (*fault) {
        case PatternFault::empty:
            throw UsageError("a pattern is empty; give a part of a host name, such as example.com");
        case PatternFault::encoding:
            throw UsageError(fmt::format("the pattern '{}' is not valid UTF-8; write it in UTF-8",
                                         printable(pattern)));
        case PatternFault::reserved:
            throw UsageError(fmt::format(
                "the pattern '{}' holds a quote, %, _ or a control character; give a plain "
                "part of a host name, such as example.com",
                printable(pattern)));
    }
}

[[noreturn]] void refuse(std::string_view reason) {
    throw UsageError(
        fmt::format(R"(--filter: {}; write {{"patterns":{{"rule":"include","patterns":["a"]}},)"
                    R"("dates":{{"rule":"insideRange","startDate":"2024-01-01","endDate":null}}}})",
                    reason));
}

/** Keeps the keys of every open object, because the parser itself lets the last of two win. */
class DuplicateKeys {
public:
    bool operator()(int /*depth*/, JSON::parse_event_t event, JSON& value) {
        if (event == JSON::parse_event_t::object_start) {
            open_.emplace_back();
        } else if (event == JSON::parse_event_t::object_end) {
            open_.pop_back();
        } else if (event == JSON::parse_event_t::key) {
            const auto key = value.get<std::string>();
            if (!open_.back().insert(key).second) {
                refuse(fmt::format("the key \"{}\" is given twice", printable(key)));
            }
        }
        return true;
    }

private:
    std::vector<std::set<std::string>> open_;
};

JSON parseJSON(std::string_view text) {
    try {
        return JSON::parse(text.begin(), text.end(), DuplicateKeys{});
    } catch (const JSON::exception&) {
        refuse("the text is not valid JSON");
    }
}

void requireObject(const JSON& value, std::string_view name,
                   std::initializer_list<std::string_view> keys) {
    if (!value.is_object()) {
        refuse(fmt::format("{} is not an object", name));
    }
    for (const auto& [key, ignored] : value.items()) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
            refuse(fmt::format("{} has no key \"{}\"", name, printable(key)));
        }
    }
}

/** The value of a key, or null if it is absent or null. */
const JSON* find(const JSON& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

template <typename Rule, std::size_t count>
Rule ruleOf(const JSON& object, const std::array<std::pair<std::string_view, Rule>, count>& rules) {
    if (const JSON* const value = find(object, "rule"); value != nullptr && value->is_string()) {
        for (const auto& [text, rule] : rules) {
            if (value->get_ref<const std::string&>() == text) {
                return rule;
            }
        }
    }
    refuse(fmt::format(R"(the "rule" must be "{}" or "{}")", rules[0].first, rules[1].first));
}

Patterns patternsFromJSON(const JSON& value) {
    requireObject(value, R"("patterns")", {"rule", "patterns"});
    const JSON* const texts = find(value, "patterns");
    if (texts == nullptr || !texts->is_array()) {
        refuse(R"("patterns" must hold a list "patterns")");
    }
    Patterns patterns{ruleOf(value, patternRules), {}};
    for (const JSON& text : *texts) {
        if (!text.is_string()) {
            refuse("every pattern must be a text");
        }
        requirePattern(text.get_ref<const std::string&>());
        patterns.patterns.insert(text.get<std::string>());
    }
    return patterns;
}

std::optional<Date> boundFromJSON(const JSON& object, const char* key) {
    const JSON* const value = find(object, key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (value->is_string()) {
        return parseDate(value->get_ref<const std::string&>());
    }
    if (value->is_number()) {
        return dateFromNumber(value->get<double>(), value->dump());
    }
    refuse(fmt::format("\"{}\" must be a date as a text or a number", key));
}

Dates datesFromJSON(const JSON& value) {
    requireObject(value, R"("dates")", {"rule", "startDate", "endDate"});
    const Dates dates{ruleOf(value, dateRules), boundFromJSON(value, "startDate"),
                      boundFromJSON(value, "endDate")};
    requireOrder(dates, value.dump());
    return dates;
}

}  // namespace

CleanableDataFilter patternFilter(CleanableDataFilter::Rule rule, std::string_view pattern) {
    requirePattern(pattern);
    return {rule, std::set<std::string>{std::string(pattern)}};
}

CleanableDataFilter datesFilter(Dates::Rule rule, std::string_view range) {
    return {std::nullopt, parseDateRange(rule, range)};
}

CleanableDataFilter daysFilter(std::string_view days) {
    return {std::nullopt, parseDays(days, ReferenceClock::now())};
}

CleanableDataFilter lastFilter(std::string_view age) {
    return {std::nullopt, parseLast(age, ReferenceClock::now())};
}

CleanableDataFilter filterFromJSON(std::string_view text) {
    const JSON value = parseJSON(text);
    requireObject(value, "the filter", {"patterns", "dates"});
    CleanableDataFilter filter;
    if (const JSON* const patterns = find(value, "patterns")) {
        filter.patternsData = patternsFromJSON(*patterns);
    }
    if (const JSON* const dates = find(value, "dates")) {
        filter.datesData = datesFromJSON(*dates);
    }
    return filter;
}

}  // namespace browsersweep::cli

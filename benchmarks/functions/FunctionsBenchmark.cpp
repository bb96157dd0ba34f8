#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "browsersweep/base/URL.h"
#include "browsersweep/documents/internal/DecimalText.h"
#include "browsersweep/documents/internal/Json.h"
#include "browsersweep/platform/internal/Text.h"
#include "browsersweep/sqlite/SQLiteStatementComponents.h"

namespace browsersweep {
namespace {

void urlParse(benchmark::State& state) {
    const std::string text = "https://www.example.test/path/to/page?query=caf%C3%A9&page=12#top";
    for (auto _ : state) {
        benchmark::DoNotOptimize(URL::parse(text));
    }
}
BENCHMARK(urlParse);

void decimalTextOfADate(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(decimalText(700000000.123456));
    }
}
BENCHMARK(decimalTextOfADate);

void reversedOrigin(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(reversedCharacters("www.example.test"));
    }
}
BENCHMARK(reversedOrigin);

void statementOfTwentyPatterns(benchmark::State& state) {
    CleanableDataFilter filter(CleanableDataFilter::Rule::include, {});
    for (int number = 0; number < 20; ++number) {
        filter.patternsData->patterns.insert("host" + std::to_string(number) + ".test");
    }
    const auto table = SQLiteStatementComponents::withPatternColumn("urls", "url", {});
    const std::vector<CleanableDataFilter> filters{filter};
    for (auto _ : state) {
        benchmark::DoNotOptimize(table.sql("SELECT COUNT(*)", filters));
    }
}
BENCHMARK(statementOfTwentyPatterns);

void jsonParse(benchmark::State& state) {
    std::string text = "[";
    while (text.size() < 1'000'000) {
        text += R"({"name": "A page", "url": "https://www.example.test/", "visits": 17},)";
    }
    text.back() = ']';
    const Bytes bytes(text.begin(), text.end());
    for (auto _ : state) {
        benchmark::DoNotOptimize(JsonDocument::parse(bytes));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(jsonParse);

}  // namespace
}  // namespace browsersweep

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/cookies/BinaryCookies.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"
#include "browsersweep/profiles/chromium/ChromiumPreferences.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

namespace {

using namespace browsersweep;  // NOLINT(google-build-using-namespace)
using Filters = std::vector<CleanableDataFilter>;

CleanableDirectory tree(const std::string& path) {
    return {path, true, {}, FileManager::defaultManager()};
}

std::uint64_t figure(const CleanableDataSize& size) {
    return static_cast<std::uint64_t>(size.itemCount.value + size.byteCount.value);
}

std::uint64_t rows(const CleanableDataSize& size) {
    return static_cast<std::uint64_t>(size.itemCount.value);
}

Filters excluding(const std::string& pattern) {
    return {{CleanableDataFilter::Rule::exclude, {pattern}}};
}

Filters since1970() {
    const CleanableDataFilter::Dates dates{CleanableDataFilter::Dates::Rule::insideRange,
                                           dateFrom1970Seconds(0), std::nullopt};
    return {{std::nullopt, dates}};
}

Filters including(const std::string& commaSeparated) {
    std::set<std::string> patterns;
    std::size_t start = 0;
    while (start < commaSeparated.size()) {
        const auto end = std::min(commaSeparated.find(',', start), commaSeparated.size());
        patterns.insert(commaSeparated.substr(start, end - start));
        start = end + 1;
    }
    return {{CleanableDataFilter::Rule::include, patterns}};
}

/** The table "urls" as the Chromium family narrows it, with dates as plain numbers. */
CleanableSQLiteDatabase history(const std::string& path) {
    const auto plainNumber = [](const Date& date) {
        return std::to_string(static_cast<std::int64_t>(referenceSeconds(date)));
    };
    const SQLiteStatementComponents::ColumnsForFiltering columns{
        "url", {{"last_visit_time", plainNumber}}};
    return {path, {{"urls", columns, {}}}, FileManager::defaultManager()};
}

Filters between(const std::string& range) {
    const auto colon = range.find(':');
    const auto at = [](const std::string& text) {
        return dateFromReferenceSeconds(std::atof(text.c_str()));
    };
    const CleanableDataFilter::Dates dates{CleanableDataFilter::Dates::Rule::insideRange,
                                           at(range.substr(0, colon)), at(range.substr(colon + 1))};
    return {{std::nullopt, dates}};
}

std::uint64_t bookmarks(const std::string& path) {
    return ChromiumBookmarks::decode(FileManager::defaultManager()->contents(path))
        .bookmarks()
        .size();
}

std::uint64_t notifications(const std::string& path) {
    return ChromiumPreferences::decode(FileManager::defaultManager()->contents(path))
        .allowedSites()
        .size();
}

std::uint64_t readCookies(const std::string& path) {
    const Bytes bytes = FileManager::defaultManager()->contents(path);
    return BinaryDataDecoder().decode<BinaryCookies>(bytes).cookieCount();
}

std::uint64_t rewriteCookies(const std::string& path, double oldestKept) {
    const Bytes bytes = FileManager::defaultManager()->contents(path);
    auto cookies = BinaryDataDecoder().decode<BinaryCookies>(bytes);
    cookies.remove([&](const BinaryCookies::Cookie& cookie) {
        return referenceSeconds(cookie.creationDate) < oldestKept;
    });
    return BinaryDataEncoder().encode(cookies).size();
}

SafariHistoryCleanableDatabase safari(const std::string& path) {
    return {path, FileManager::defaultManager()};
}

/** Tells the most memory that the process had, where the system keeps it per program. */
void tellPeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) {
            std::fprintf(stderr, "peak %ld KiB\n", std::atol(line.c_str() + 6));
        }
    }
}

std::uint64_t done(std::uint64_t figure = 0) {
    return figure;
}

}  // namespace

/** ours WORKLOAD PATH [ARGUMENT]: does the work once through the library and prints its figure. */
int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: ours WORKLOAD PATH [ARGUMENT]\n", stderr);
        return 2;
    }
    const std::string path = argv[2];
    const std::string argument = argc > 3 ? argv[3] : "";
    // clang-format off
    const std::map<std::string, std::function<std::uint64_t()>> workloads{
        {"nothing",             [&] { return done(); }},
        {"tree-size",           [&] { return figure(tree(path).size()); }},
        {"tree-size-pattern",   [&] { return figure(tree(path).size(excluding(argument))); }},
        {"tree-size-date",      [&] { return figure(tree(path).size(since1970())); }},
        {"tree-clean",          [&] { tree(path).clean(); return done(); }},
        {"history-size",        [&] { return rows(history(path).size()); }},
        {"history-size-patterns", [&] { return rows(history(path).size(including(argument))); }},
        {"history-size-dates",  [&] { return rows(history(path).size(between(argument))); }},
        {"history-clean",       [&] { history(path).clean(including(argument)); return done(); }},
        {"safari-size",         [&] { return rows(safari(path).size(including(argument))); }},
        {"safari-clean",        [&] { safari(path).clean(including(argument)); return done(); }},
        {"cookies-read",        [&] { return readCookies(path); }},
        {"cookies-rewrite",     [&] { return rewriteCookies(path, std::atof(argument.c_str())); }},
        {"bookmarks",           [&] { return bookmarks(path); }},
        {"notifications",       [&] { return notifications(path); }},
    };
    // clang-format on
    const auto found = workloads.find(argv[1]);
    if (found == workloads.end()) {
        std::fprintf(stderr, "unknown workload %s\n", argv[1]);
        return 2;
    }
    std::printf("%llu\n", static_cast<unsigned long long>(found->second()));
    tellPeakMemory();
    return 0;
}

// A piece of data of one's own beside those of the library: the lines of a download log. It goes
// into the same map, and is measured and cleaned with everything else.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/catalogue/BrowserCleaners.h"

namespace bs = browsersweep;

namespace {

/** A text file with an address in each line. */
class LogLines : public bs::CleanableData {
public:
    explicit LogLines(std::filesystem::path file) : file_(std::move(file)) {}

    bool requiresClosedBrowserToClean() const noexcept override { return false; }

    using bs::CleanableData::clean;
    using bs::CleanableData::size;

    bs::CleanableDataSize size(bs::CleanableDataFilters filters) const override {
        bs::CleanableDataSize size;
        for (const auto& line : read()) {
            if (isSelected(line, filters)) {
                size = size + bs::CleanableDataSize{1, std::ssize(line) + 1};
            }
        }
        return size;
    }

    void clean(bs::CleanableDataFilters filters) const override {
        auto lines = read();
        std::erase_if(lines, [&](const auto& line) { return isSelected(line, filters); });
        std::ofstream file(file_, std::ios::trunc);
        for (const auto& line : lines) {
            file << line << '\n';
        }
    }

private:
    std::vector<std::string> read() const {
        std::vector<std::string> lines;
        std::ifstream file(file_);
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    // One function for both: what is measured is what is cleaned. Every filter must agree.
    static bool isSelected(const std::string& line, bs::CleanableDataFilters filters) {
        return std::all_of(filters.begin(), filters.end(), [&](const auto& filter) {
            const bool occurs =
                std::any_of(filter.patterns().begin(), filter.patterns().end(),
                            [&](const auto& text) { return line.find(text) != std::string::npos; });
            return (filter.rule() == bs::CleanableDataFilter::Rule::include) == occurs;
        });
    }

    std::filesystem::path file_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: own_cleanable_data HOME\n";
        return 2;
    }
    const std::filesystem::path log = std::filesystem::path(arguments[1]) / "downloads.log";
    std::ofstream(log) << "https://www.example.com/a.zip\nhttps://files.example.net/b.zip\n";

    const auto chrome = bs::cleaner(bs::Browser::googleChrome, bs::Home::at(arguments[1]));
    auto data = chrome->cleanableData(
        [](const bs::BrowserProfile& profile) { return profile.isPrimary(); });
    data.merge(bs::CleanableDataMap({{bs::CleanableDataCategory::history,
                                      bs::CleanableDataList({std::make_shared<LogLines>(log)})}}));

    using Rule = bs::CleanableDataFilter::Rule;
    const std::vector<bs::CleanableDataFilter> filters{
        bs::CleanableDataFilter(Rule::exclude, {"example.com"})};
    const auto removed = data.find(bs::CleanableDataCategory::history)->cleanAndReturnSize(filters);
    std::cout << removed.itemCount.value << " removed; the log is now:\n"
              << std::ifstream(log).rdbuf();
}

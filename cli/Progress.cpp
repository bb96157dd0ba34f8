#include "cli/Progress.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/Report.h"

namespace browsersweep::cli {
namespace {

constexpr std::size_t barWidth = 16;
constexpr std::string_view startOfLine = "\r";
constexpr std::string_view eraseToEndOfLine = "\x1b[K";

}  // namespace

std::string progressLine(std::string_view what, std::size_t finished, std::size_t all) {
    const std::size_t full = all == 0 ? barWidth : std::min(barWidth, finished * barWidth / all);
    return fmt::format("[{:#<{}}{:-<{}}] {}", "", full, "", barWidth - full, what);
}

Progress::Progress(std::string_view verb, const Console& console, const Interruption& interruption)
    : verb_(verb),
      console_(console),
      interruption_(interruption),
      isShown_(console.errorIsTerminal()) {}

Progress::~Progress() {
    wipe();
}

void Progress::wipe() const noexcept {
    if (isShown_) {
        console_.writeError(startOfLine);
        console_.writeError(eraseToEndOfLine);
    }
}

void Progress::begin(Browser browser, std::size_t finished, std::size_t all) {
    browserName_ = displayName(browser);
    finished_ = finished;
    all_ = all;
    show(browserName_);
}

void Progress::begin(CleanableDataCategory category) {
    show(fmt::format("{}: {}", browserName_, displayName(category)));
}

void Progress::note(const std::string& line) {
    wipe();
    console_.note(line);
}

void Progress::show(const std::string& what) const {
    if (isShown_) {
        const auto line = progressLine(fmt::format("{} {}", verb_, what), finished_, all_);
        console_.writeError(fmt::format("{}{}{}", startOfLine, line, eraseToEndOfLine));
    }
}

}  // namespace browsersweep::cli

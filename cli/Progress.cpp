#include "cli/Progress.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "cli/Appearance.h"
#include "cli/Report.h"

namespace browsersweep::cli {
namespace {

constexpr std::size_t barWidth = 16;
constexpr std::string_view startOfLine = "\r";
constexpr std::string_view eraseToEndOfLine = "\x1b[K";

}  // namespace

std::string progressLine(std::string_view what, WorkDone done, std::size_t columns) {
    const std::size_t full =
        done.all == 0 ? barWidth : std::min(barWidth, done.finished * barWidth / done.all);
    return fmt::format("[{:#<{}}{:-<{}}] {}", "", full, "", barWidth - full, what)
        .substr(0, columns);
}

Progress::Progress(std::string_view verb, const Console& console,
                   std::shared_ptr<OperationControl> control)
    : verb_(verb),
      console_(console),
      control_(std::move(control)),
      isShown_(console.errorIsTerminal() && understandsEscapeSequences(environmentVariable)) {}

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
    done_ = {finished, all};
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
        // A line that fills the last column would wrap, and only its second half would be wiped.
        const auto line =
            progressLine(fmt::format("{} {}", verb_, what), done_, console_.errorColumns() - 1);
        console_.writeError(fmt::format("{}{}{}", startOfLine, line, eraseToEndOfLine));
    }
}

}  // namespace browsersweep::cli

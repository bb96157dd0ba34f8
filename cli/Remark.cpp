#include "cli/Remark.h"

#include "cli/Wrapping.h"

namespace browsersweep::cli {

std::string remark(std::string_view text, const Appearance& appearance) {
    if (text.empty()) {
        return {};
    }
    const auto lines = wrapped(text, appearance.columns);
    return styled(std::string_view(lines).substr(0, lines.size() - 1), Style::faint, appearance) +
           "\n";
}

}  // namespace browsersweep::cli

#include "cli/sites/KeptKinds.h"

#include <algorithm>
#include <array>
#include <utility>

namespace browsersweep::cli {

std::set<TraceKind> kindsOfCategories(const std::vector<CleanableDataCategory>& categories) {
    using Category = CleanableDataCategory;
    // clang-format off
    constexpr std::array table{
        std::pair{TraceKind::history,        Category::history},
        std::pair{TraceKind::downloads,      Category::history},
        std::pair{TraceKind::icons,          Category::history},
        std::pair{TraceKind::openTabs,       Category::history},
        std::pair{TraceKind::predictions,    Category::history},
        std::pair{TraceKind::cookies,        Category::httpCookies},
        std::pair{TraceKind::siteStorage,    Category::localStorage},
        std::pair{TraceKind::serviceWorkers, Category::localStorage},
        std::pair{TraceKind::cachedFiles,    Category::cache},
        std::pair{TraceKind::formData,       Category::formData},
    };
    // clang-format on
    std::set<TraceKind> kinds;
    for (const auto& [kind, category] : table) {
        if (std::find(categories.begin(), categories.end(), category) != categories.end()) {
            kinds.insert(kind);
        }
    }
    return kinds;
}

}  // namespace browsersweep::cli

#include "cli/Names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace browsersweep::cli {
namespace {

template <typename Value>
using ShortName = std::pair<std::string_view, Value>;

constexpr std::array shortBrowserNames{
    ShortName<Browser>{"quenby", Browser::quenbySecureBrowser},
    ShortName<Browser>{"tarrow", Browser::tarrowSecureBrowser},
    ShortName<Browser>{"chrome", Browser::googleChrome},
    ShortName<Browser>{"edge", Browser::microsoftEdge},
    ShortName<Browser>{"brellis", Browser::brellisPrivateBrowser},
    ShortName<Browser>{"yandex", Browser::yandexBrowser},
};

constexpr std::array shortCategoryNames{
    ShortName<CleanableDataCategory>{"cookies", CleanableDataCategory::httpCookies},
    ShortName<CleanableDataCategory>{"flash", CleanableDataCategory::flashCookies},
    ShortName<CleanableDataCategory>{"forms", CleanableDataCategory::formData},
    ShortName<CleanableDataCategory>{"storage", CleanableDataCategory::localStorage},
};

template <typename Value, std::size_t count>
std::optional<Value> find(std::string_view name, const std::array<ShortName<Value>, count>& names) {
    const auto* const found = std::find_if(
        names.begin(), names.end(), [name](const auto& entry) { return entry.first == name; });
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

std::optional<Browser> browserNamed(std::string_view name) {
    const auto browser = browserFromRawValue(name);
    return browser ? browser : find(name, shortBrowserNames);
}

std::optional<CleanableDataCategory> categoryNamed(std::string_view name) {
    const auto category = cleanableDataCategoryFromRawValue(name);
    return category ? category : find(name, shortCategoryNames);
}

}  // namespace browsersweep::cli

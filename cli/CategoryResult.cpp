#include "cli/CategoryResult.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace browsersweep::cli {
namespace {

/** What is worse stands later. */
constexpr std::array byGravity{
    ItemVerdict::nothingThere,   ItemVerdict::measured,      ItemVerdict::emptied,
    ItemVerdict::cancelled,      ItemVerdict::leftOut,       ItemVerdict::partlyEmptied,
    ItemVerdict::couldNotLook,   ItemVerdict::notUnderstood, ItemVerdict::held,
    ItemVerdict::couldNotDelete,
};

bool isLessGrave(const ItemRow& one, const ItemRow& other) {
    const auto place = [](const ItemRow& item) {
        return std::find(byGravity.begin(), byGravity.end(), item.verdict);
    };
    return place(one) < place(other);
}

}  // namespace

CategoryResult resultOf(const std::vector<ItemRow>& items) {
    const auto worst = std::max_element(items.begin(), items.end(), isLessGrave);
    if (worst == items.end()) {
        return {};
    }
    const std::string name(displayName(worst->verdict));
    const auto count = std::count_if(items.begin(), items.end(), [worst](const ItemRow& item) {
        return item.verdict == worst->verdict;
    });
    if (isSuccess(worst->verdict) || items.size() == 1) {
        return {name, isSuccess(worst->verdict)};
    }
    return {fmt::format("{} ({} of {})", name, count, items.size()), false};
}

}  // namespace browsersweep::cli

#include "browsersweep/hosting/ItemVerdict.h"

#include <array>
#include <cstddef>

namespace browsersweep {
namespace {

struct Words {
    std::string_view rawValue;
    std::string_view displayName;
};

constexpr std::array<Words, 10> words{{
    {"measured", "measured"},
    {"emptied", "emptied"},
    {"partlyEmptied", "only partly emptied"},
    {"nothingThere", "nothing there"},
    {"couldNotLook", "could not look"},
    {"couldNotDelete", "could not delete"},
    {"held", "held by another program"},
    {"notUnderstood", "not understood"},
    {"leftOut", "left out"},
    {"cancelled", "cancelled"},
}};

}  // namespace

std::string_view rawValue(ItemVerdict verdict) noexcept {
    return words[static_cast<std::size_t>(verdict)].rawValue;
}

std::string_view displayName(ItemVerdict verdict) noexcept {
    return words[static_cast<std::size_t>(verdict)].displayName;
}

bool isSuccess(ItemVerdict verdict) noexcept {
    return verdict == ItemVerdict::measured || verdict == ItemVerdict::emptied ||
           verdict == ItemVerdict::nothingThere;
}

}  // namespace browsersweep

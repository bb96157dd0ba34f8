#include "fuzz/targets/Targets.h"

#include <array>

namespace browsersweep::fuzz {
namespace {

// One line for each target: the build makes a program of every name found here.
// clang-format off
constexpr std::array<Target, 14> targets{{
    {"cookieFile",        cookieFile},
    {"decoderFramework",  decoderFramework},
    {"propertyList",      propertyList},
    {"iniFile",           iniFile},
    {"localState",        localState},
    {"chromiumBookmarks", chromiumBookmarks},
    {"preferences",       preferences},
    {"safariBookmarks",   safariBookmarks},
    {"filterSQL",         filterSQL},
    {"urlText",           urlText},
    {"decimalNumber",     decimalNumber},
    {"commandLine",       commandLine},
    {"commandLineFilter", commandLineFilter},
    {"commandLineDate",   commandLineDate},
}};
// clang-format on

}  // namespace

std::span<const Target> allTargets() noexcept {
    return targets;
}

}  // namespace browsersweep::fuzz

#pragma once

#include <span>
#include <string_view>

#include "browsersweep/base/Bytes.h"

namespace browsersweep::fuzz {

/** A function that takes any bytes. It throws where the library breaks one of its own rules. */
struct Target {
    std::string_view name;
    void (*run)(BytesView input);
};

/** All of them, by name. */
std::span<const Target> allTargets() noexcept;

// clang-format off
void cookieFile        (BytesView input);
void decoderFramework  (BytesView input);
void propertyList      (BytesView input);
void iniFile           (BytesView input);
void localState        (BytesView input);
void chromiumBookmarks (BytesView input);
void preferences       (BytesView input);
void safariBookmarks   (BytesView input);
void filterSQL         (BytesView input);
void urlText           (BytesView input);
void decimalNumber     (BytesView input);
void commandLine       (BytesView input);
void commandLineFilter (BytesView input);
void commandLineDate   (BytesView input);
// clang-format on

}  // namespace browsersweep::fuzz

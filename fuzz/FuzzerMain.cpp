/**
 * A libFuzzer program for one target. Beside running it, it measures how much memory the run held
 * at once: readers must not take more than a small multiple of what they read.
 */

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <sanitizer/allocator_interface.h>

#include "fuzz/targets/Targets.h"

namespace {

using browsersweep::fuzz::Target;

struct Memory {
    std::int64_t held = 0;
    std::int64_t peak = 0;
};

// The hooks are plain functions, so what they count has nowhere else to live.
Memory memory;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

void allocated(const volatile void* /*block*/, std::size_t size) {
    memory.held += static_cast<std::int64_t>(size);
    memory.peak = std::max(memory.peak, memory.held);
}

void freed(const volatile void* block) {
    if (block != nullptr) {
        memory.held -= static_cast<std::int64_t>(
            __sanitizer_get_allocated_size(const_cast<const void*>(block)));
    }
}

const Target& target() {
    const auto targets = browsersweep::fuzz::allTargets();
    const auto found = std::find_if(targets.begin(), targets.end(), [](const Target& candidate) {
        return candidate.name == BROWSERSWEEP_FUZZ_TARGET;
    });
    if (found == targets.end()) {
        std::fputs("there is no target of this name\n", stderr);
        std::abort();
    }
    return *found;
}

constexpr std::int64_t fixedAllowance = std::int64_t{16} << 20U;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    if (__sanitizer_install_malloc_and_free_hooks(allocated, freed) == 0) {
        std::fputs("the memory of the target cannot be watched\n", stderr);
        std::abort();
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Target& chosen = target();
    memory = {};
    chosen.run({data, size});
    if (memory.peak > 4 * static_cast<std::int64_t>(size) + fixedAllowance) {
        std::fprintf(stderr, "an input of %zu bytes took %lld bytes of memory\n", size,
                     static_cast<long long>(memory.peak));
        std::abort();
    }
    return 0;
}

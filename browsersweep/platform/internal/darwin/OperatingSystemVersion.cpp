#include "browsersweep/platform/OperatingSystemVersion.h"

#include <array>
#include <cstddef>
#include <string_view>

#include <sys/sysctl.h>

namespace browsersweep {

OperatingSystemVersion OperatingSystemVersion::current() noexcept {
    std::array<char, 64> text{};
    std::size_t length = text.size();
    // The name came with 10.13.4: a system that does not know it is older than every version that
    // makes a difference here.
    if (::sysctlbyname("kern.osproductversion", text.data(), &length, nullptr, 0) != 0) {
        return {10, 13, 0};
    }
    const std::string_view version(text.data());
    return parse(version).value_or(OperatingSystemVersion{10, 13, 0});
}

}  // namespace browsersweep

#include "browsersweep/platform/SystemServices.h"

#include "browsersweep/platform/internal/InMemoryCookieStorage.h"

namespace browsersweep {
namespace {

class NoProcessLauncher final : public ProcessLauncher {
public:
    void runAndWait(const std::filesystem::path& /*executable*/,
                    std::span<const std::string> /*arguments*/) const noexcept override {}
};

}  // namespace

SystemServices SystemServices::current() {
    return {OperatingSystemVersion::current, HTTPCookieStorage::shared, ProcessLauncher::system(),
            SystemLog::system()};
}

SystemServices SystemServices::isolated() {
    return {OperatingSystemVersion::current,
            [](std::string_view) { return std::make_shared<InMemoryCookieStorage>(); },
            std::make_shared<NoProcessLauncher>(), SystemLog::system()};
}

}  // namespace browsersweep

#include "cli/ErrorText.h"

#include "browsersweep/hosting/FailureKind.h"

#include "cli/Text.h"

namespace browsersweep::cli {

std::string errorText(const std::exception& error) {
    const std::string_view kind = displayName(failureKind(error));
    const std::string message = printable(error.what());
    if (message.empty()) {
        return kind.empty() ? "an error without a message" : std::string(kind);
    }
    return kind.empty() ? message : std::string(kind) + ": " + message;
}

bool saysNoPermission(std::string_view text) noexcept {
    return text.starts_with(displayName(FailureKind::noPermission));
}

}  // namespace browsersweep::cli

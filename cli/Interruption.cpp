#include "cli/Interruption.h"

#include <array>

namespace browsersweep::cli {
namespace {

constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP};

}  // namespace

Interruption::Interruption() noexcept {
    ::signal(SIGPIPE,
             SIG_IGN);  // NOLINT(cppcoreguidelines-pro-type-cstyle-cast): the system's macro
    // On macOS these and sigismember are macros, which cannot be qualified.
    sigemptyset(&held_);
    for (const int number : endingSignals) {
        sigaddset(&held_, number);
    }
    ::sigprocmask(SIG_BLOCK, &held_, &before_);
}

Interruption::~Interruption() {
    letThrough();
}

bool Interruption::hasCome() const noexcept {
    sigset_t pending{};
    ::sigpending(&pending);
    for (const int number : endingSignals) {
        if (sigismember(&pending, number) == 1) {
            return true;
        }
    }
    return false;
}

std::optional<int> Interruption::take() noexcept {
    int number = 0;
    if (!hasCome() || ::sigwait(&held_, &number) != 0) {
        return std::nullopt;
    }
    return number;
}

void Interruption::letThrough() noexcept {
    ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void Interruption::holdBack() noexcept {
    ::sigprocmask(SIG_BLOCK, &held_, nullptr);
}

}  // namespace browsersweep::cli

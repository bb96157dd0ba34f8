#include "cli/Interruption.h"

#include <cstddef>

namespace browsersweep::cli {
namespace {

// The only state that a signal's handler may touch; 0 where none has come.
volatile sig_atomic_t arrivedSignal = 0;

void restoreDefault(int number) noexcept {
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;  // NOLINT: a union and a cast, of the system's making
    sigaction(number, &standard, nullptr);
}

/** The next one, whichever it is, ends the program: a user who asks twice means it. */
void noteSignal(int number) {
    arrivedSignal = number;
    restoreDefault(SIGINT);
    restoreDefault(SIGTERM);
    restoreDefault(SIGHUP);
}

bool isIgnored(const struct sigaction& action) noexcept {
    return action.sa_handler == SIG_IGN;  // NOLINT: a union and a cast, of the system's making
}

}  // namespace

Interruption::Interruption() noexcept {
    ::signal(SIGPIPE, SIG_IGN);  // NOLINT(cppcoreguidelines-pro-type-cstyle-cast)
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        sigaction(endingSignals.at(i), nullptr, &before_.at(i));
    }
    holdBack();
}

Interruption::~Interruption() {
    letThrough();
    arrivedSignal = 0;
}

bool Interruption::hasCome() const noexcept {
    return arrivedSignal != 0;
}

std::optional<int> Interruption::take() noexcept {
    const int number = arrivedSignal;
    arrivedSignal = 0;
    return number == 0 ? std::nullopt : std::optional(number);
}

void Interruption::letThrough() noexcept {
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        sigaction(endingSignals.at(i), &before_.at(i), nullptr);
    }
    // One that came between the last question and now must not be lost.
    if (hasCome()) {
        ::raise(arrivedSignal);
    }
}

void Interruption::holdBack() noexcept {
    struct sigaction noting = {};
    noting.sa_handler = noteSignal;  // NOLINT: a union, of the system's making
    noting.sa_flags = SA_RESTART;
    sigemptyset(&noting.sa_mask);
    sigset_t ending{};
    sigemptyset(&ending);
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        if (!isIgnored(before_.at(i))) {
            sigaction(endingSignals.at(i), &noting, nullptr);
            sigaddset(&ending, endingSignals.at(i));
        }
    }
    // A caller that blocks them must not make the program one that cannot be stopped.
    sigprocmask(SIG_UNBLOCK, &ending, nullptr);
}

}  // namespace browsersweep::cli

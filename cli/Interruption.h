#pragma once

#include <array>
#include <optional>

#include <signal.h>  // NOLINT(modernize-deprecated-headers): the C++ header lacks sigaction

namespace browsersweep::cli {

/**
 * Notes the first signal that asks the program to end, for as long as it lives, instead of ending
 * at once: what is under way stops in order, and the report says what was done. The second one ends
 * the program. A signal that the caller ignores, as `nohup` does, stays ignored. A broken pipe is a
 * failed write, not a signal. There can be one of these at a time, because a process has one set of
 * signals.
 */
class Interruption {
public:
    Interruption() noexcept;
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /** Whether such a signal has come. */
    bool hasCome() const noexcept;

    /** Takes the signal that has come, if any, so that it does not end the program any more. */
    std::optional<int> take() noexcept;

    /** Lets the signals through again, as while a question waits for its answer. */
    void letThrough() noexcept;
    void holdBack() noexcept;

private:
    static constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP};

    std::array<struct sigaction, endingSignals.size()> before_{};
};

}  // namespace browsersweep::cli

#pragma once

#include <optional>

#include <signal.h>  // NOLINT(modernize-deprecated-headers): the C++ header lacks signal sets

namespace browsersweep::cli {

/**
 * Holds back the signals that ask the program to end, for as long as it lives, so that the item
 * that is being read or cleaned is finished and its temporary copy removed. The program asks
 * between two items whether one has come. A broken pipe is a failed write, not a signal.
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
    sigset_t held_{};
    sigset_t before_{};
};

}  // namespace browsersweep::cli

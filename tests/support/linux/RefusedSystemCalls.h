#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace browsersweep::tests {

/** A system call that the kernel refuses, and with which error. */
struct Refusal {
    long call = 0;
    int error = 0;
    /** Only where these bits of this argument are set; by default always. */
    unsigned argument = 0;
    std::uint32_t bits = 0;
};

/**
 * Runs a piece of a test in a thread of its own, which may call `refuse`, and waits for its end.
 * What the piece throws is thrown here.
 */
void inOwnThread(const std::function<void()>& piece);

/**
 * From now on the kernel refuses these calls of the present thread, for the rest of its life: how
 * failing disks and full tables look to a program. Only in a piece of `inOwnThread`. False where
 * the system has no such filters or forbids them.
 */
[[nodiscard]] bool refuse(const std::vector<Refusal>& refusals);

/** Makes the present thread, not the process, one of another user. False without the right to. */
[[nodiscard]] bool becomeUser(unsigned user);

}  // namespace browsersweep::tests

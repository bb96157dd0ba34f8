#include "tests/support/linux/RefusedSystemCalls.h"

#include <cstddef>
#include <exception>
#include <thread>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace browsersweep::tests {
namespace {

sock_filter load(std::size_t offset) {
    return {BPF_LD | BPF_W | BPF_ABS, 0, 0, static_cast<std::uint32_t>(offset)};
}

/** Goes on if the value is this, else leaves out as many instructions. */
sock_filter unlessEqualSkip(std::uint32_t value, std::uint8_t count) {
    return {BPF_JMP | BPF_JEQ | BPF_K, 0, count, value};
}

sock_filter masked(std::uint32_t bits) {
    return {BPF_ALU | BPF_AND | BPF_K, 0, 0, bits};
}

sock_filter answer(std::uint32_t verdict) {
    return {BPF_RET | BPF_K, 0, 0, verdict};
}

void append(std::vector<sock_filter>& program, const Refusal& refusal) {
    const std::size_t argument =
        offsetof(seccomp_data, args) + refusal.argument * sizeof(std::uint64_t);
    const auto error = static_cast<std::uint32_t>(refusal.error);
    const std::vector<sock_filter> instructions{
        load(offsetof(seccomp_data, nr)),
        unlessEqualSkip(static_cast<std::uint32_t>(refusal.call), 4),
        load(argument),  // its lower half, on machines that begin with it
        masked(refusal.bits),
        unlessEqualSkip(refusal.bits, 1),
        answer(SECCOMP_RET_ERRNO | (error & SECCOMP_RET_DATA)),
    };
    program.insert(program.end(), instructions.begin(), instructions.end());
}

}  // namespace

void inOwnThread(const std::function<void()>& piece) {
    std::exception_ptr thrown;
    std::thread thread([&] {
        try {
            piece();
        } catch (...) {
            thrown = std::current_exception();
        }
    });
    thread.join();
    if (thrown) {
        std::rethrow_exception(thrown);
    }
}

bool refuse(const std::vector<Refusal>& refusals) {
    std::vector<sock_filter> program;
    for (const Refusal& refusal : refusals) {
        append(program, refusal);
    }
    program.push_back(answer(SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter, 0, 0) == 0;
}

bool becomeUser(unsigned user) {
    // The function of the C library would do it to every thread.
    return ::syscall(SYS_setresuid, user, user, user) == 0;
}

}  // namespace browsersweep::tests

#include "tests/support/ChildProcess.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace browsersweep::tests {
namespace {

// The account "nobody" of the systems that the tests run on.
constexpr unsigned ordinaryUser = 65534;

[[noreturn]] void standStill() {
    for (;;) {
        ::pause();
    }
}

[[noreturn]] void work(const std::function<void(const ChildProcess::Ready&)>& body, int pipe) {
    try {
        body([pipe] {
            if (::write(pipe, "r", 1) != 1) {
                ::_exit(1);
            }
            standStill();
        });
    } catch (const std::exception& error) {
        std::fprintf(stderr, "the second process failed: %s\n", error.what());
    }
    ::_exit(1);
}

bool becomesOrdinary() {
    return ::geteuid() != 0 || (::setgid(ordinaryUser) == 0 && ::setuid(ordinaryUser) == 0);
}

}  // namespace

ChildProcess::ChildProcess(const std::function<void(const Ready&)>& body) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe to a second process");
    }
    process_ = ::fork();
    if (process_ == 0) {
        ::close(ends[0]);
        work(body, ends[1]);
    }
    ::close(ends[1]);
    char ready = 0;
    const bool isReady = process_ > 0 && ::read(ends[0], &ready, 1) == 1;
    ::close(ends[0]);
    if (!isReady) {
        throw std::runtime_error("the second process ended early");
    }
}

ChildProcess::~ChildProcess() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

int runInProcess(const std::function<int()>& body) {
    std::fflush(nullptr);
    const pid_t process = ::fork();
    if (process == 0) {
        int status = 2;
        try {
            status = body();
            status = status == 0 && testing::Test::HasFailure() ? 1 : status;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "the part in another process failed: %s\n", error.what());
        }
        std::fflush(nullptr);
        ::_exit(status);
    }
    int status = -1;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int runAsOrdinaryUser(const std::function<void()>& body) {
    return runInProcess([&body] {
        if (!becomesOrdinary()) {
            return 2;
        }
        body();
        return 0;
    });
}

}  // namespace browsersweep::tests

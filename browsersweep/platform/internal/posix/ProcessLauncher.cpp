#include "browsersweep/platform/ProcessLauncher.h"

#include <cerrno>
#include <csignal>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/ProcessEnvironment.h"

namespace browsersweep {
namespace {

/** Where the system's own programs lie: a name in a command means one of them. */
constexpr std::string_view systemPath = "PATH=/usr/bin:/bin:/usr/sbin:/sbin";

void waitFor(pid_t process) noexcept {
    int status = 0;
    while (::waitpid(process, &status, 0) == -1 && errno == EINTR) {
    }
}

/** The child's standard streams: its output must not reach the user's terminal. */
class SilentStreams {
public:
    SilentStreams() noexcept {
        ::posix_spawn_file_actions_init(&actions_);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
        }
    }
    SilentStreams(const SilentStreams&) = delete;
    SilentStreams& operator=(const SilentStreams&) = delete;
    ~SilentStreams() { ::posix_spawn_file_actions_destroy(&actions_); }

    const posix_spawn_file_actions_t* get() const noexcept { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/** No signal is blocked in the child, whatever the host holds back on this thread. */
class UnblockedSignals {
public:
    UnblockedSignals() noexcept {
        sigset_t none;
        sigemptyset(&none);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    }
    UnblockedSignals(const UnblockedSignals&) = delete;
    UnblockedSignals& operator=(const UnblockedSignals&) = delete;
    ~UnblockedSignals() { ::posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const noexcept { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

/** Texts in the form that programs take them in. */
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWithSystemPath() {
    std::vector<std::string> variables{std::string(systemPath)};
    for (char** variable = posix::processEnvironment(); *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        if (text.substr(0, 5) != "PATH=") {
            variables.emplace_back(text);
        }
    }
    return variables;
}

class PosixProcessLauncher final : public ProcessLauncher {
public:
    void runAndWait(const std::filesystem::path& executable,
                    std::span<const std::string> arguments) const noexcept override {
        std::vector<std::string> texts{executable.native()};
        texts.insert(texts.end(), arguments.begin(), arguments.end());
        std::vector<std::string> variables = environmentWithSystemPath();
        const SilentStreams streams;
        const UnblockedSignals signals;
        pid_t process = 0;
        if (::posix_spawn(&process, executable.c_str(), streams.get(), signals.get(),
                          pointersTo(texts).data(), pointersTo(variables).data()) == 0) {
            waitFor(process);
        }
    }
};

}  // namespace

std::shared_ptr<const ProcessLauncher> ProcessLauncher::system() {
    return std::make_shared<const PosixProcessLauncher>();
}

}  // namespace browsersweep

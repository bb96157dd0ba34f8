#include "browsersweep/platform/ProcessLauncher.h"

#include <cerrno>
#include <vector>

#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>

#include "browsersweep/platform/internal/posix/ProcessEnvironment.h"

namespace browsersweep {
namespace {

void waitFor(pid_t process) noexcept {
    int status = 0;
    while (::waitpid(process, &status, 0) == -1 && errno == EINTR) {
    }
}

class PosixProcessLauncher final : public ProcessLauncher {
public:
    void runAndWait(const std::filesystem::path& executable,
                    std::span<const std::string> arguments) const noexcept override {
        std::vector<std::string> texts{executable.native()};
        texts.insert(texts.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        pointers.reserve(texts.size() + 1);
        for (std::string& text : texts) {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
        pid_t process = 0;
        if (::posix_spawn(&process, executable.c_str(), nullptr, nullptr, pointers.data(),
                          posix::processEnvironment()) == 0) {
            waitFor(process);
        }
    }
};

}  // namespace

std::shared_ptr<const ProcessLauncher> ProcessLauncher::system() {
    return std::make_shared<const PosixProcessLauncher>();
}

}  // namespace browsersweep

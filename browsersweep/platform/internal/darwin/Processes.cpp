#include "browsersweep/platform/internal/Processes.h"

#include <array>
#include <cstddef>

#include <libproc.h>
#include <sys/types.h>
#include <unistd.h>

namespace browsersweep {
namespace {

std::vector<pid_t> ownProcesses() {
    const int expected = ::proc_listpids(PROC_UID_ONLY, ::geteuid(), nullptr, 0);
    if (expected <= 0) {
        return {};
    }
    constexpr std::size_t reserve = 64;  // for programs that start meanwhile
    std::vector<pid_t> processes(static_cast<std::size_t>(expected) / sizeof(pid_t) + reserve);
    const int filled = ::proc_listpids(PROC_UID_ONLY, ::geteuid(), processes.data(),
                                       static_cast<int>(processes.size() * sizeof(pid_t)));
    processes.resize(filled <= 0 ? 0 : static_cast<std::size_t>(filled) / sizeof(pid_t));
    return processes;
}

}  // namespace

std::vector<std::string> namesOfRunningPrograms() {
    std::vector<std::string> names;
    std::array<char, PROC_PIDPATHINFO_MAXSIZE> name{};
    for (const pid_t process : ownProcesses()) {
        const int length = ::proc_name(process, name.data(), static_cast<uint32_t>(name.size()));
        if (process > 0 && length > 0) {
            names.emplace_back(name.data(), static_cast<std::size_t>(length));
        }
    }
    return names;
}

}  // namespace browsersweep

#include "browsersweep/platform/internal/Processes.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace browsersweep {
namespace {

bool isProcess(const std::filesystem::path& folder) {
    const auto name = folder.filename().string();
    return std::all_of(name.begin(), name.end(),
                       [](unsigned char c) { return std::isdigit(c) != 0; });
}

bool isOwn(const std::filesystem::path& folder) {
    struct stat status = {};
    return ::stat(folder.c_str(), &status) == 0 && status.st_uid == ::geteuid();
}

}  // namespace

std::vector<std::string> namesOfRunningPrograms() {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        std::string name;
        if (isProcess(entry->path()) && isOwn(entry->path()) &&
            std::getline(std::ifstream(entry->path() / "comm"), name)) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

}  // namespace browsersweep

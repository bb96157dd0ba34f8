#include "tests/darwin/emulation/Refusals.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "tests/darwin/emulation/Dataless.h"
#include "tests/darwin/emulation/Flags.h"
#include "tests/darwin/emulation/Names.h"
#include "tests/darwin/emulation/Settings.h"

namespace browsersweep::emulation {
namespace {

bool isBelow(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path[folder.size()] == '/' &&
           path.substr(0, folder.size()) == folder;
}

int privacyRefusal(const std::string& path, const std::string& folder, Wish wish) {
    if (path == folder) {
        return wish == Wish::look ? 0 : EPERM;
    }
    if (!isBelow(path, folder)) {
        return 0;
    }
    if (!isOn("hide=no")) {
        return wish == Wish::look || wish == Wish::read ? ENOENT : EPERM;
    }
    return wish == Wish::look ? 0 : EPERM;
}

}  // namespace

int refusal(int directory, const std::string& path, Wish wish, int statFlags) {
    const auto guarded = protectedFolders();
    const auto dataless = datalessFolders();
    if (!guarded.empty() || !dataless.empty()) {
        const std::string whole = absolutePath(directory, path);
        for (const std::string& folder : guarded) {
            if (const int error = privacyRefusal(whole, folder, wish)) {
                return error;
            }
        }
        const bool isDataless =
            std::find(dataless.begin(), dataless.end(), whole) != dataless.end();
        if (isDataless && wish == Wish::read && !mayDownload(whole)) {
            return EDEADLK;
        }
    }
    const bool changes = wish == Wish::write || wish == Wish::change;
    if (changes && !isUTF8(path)) {
        return EILSEQ;
    }
    return changes && isLocked(directory, path.c_str(), statFlags) ? EPERM : 0;
}

}  // namespace browsersweep::emulation

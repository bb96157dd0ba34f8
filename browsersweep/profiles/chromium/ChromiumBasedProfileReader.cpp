#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"

#include <cstddef>
#include <utility>

#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/chromium/LocalState.h"
#include "browsersweep/profiles/internal/AppendingPath.h"

namespace browsersweep {

ChromiumBasedProfileReader::ChromiumBasedProfileReader(
    std::filesystem::path applicationSupportRelativePath, Home home, Browser browser)
    : applicationSupportRelativePath_(std::move(applicationSupportRelativePath)),
      home_(std::move(home)),
      browser_(browser) {}

std::vector<std::shared_ptr<const BrowserProfile>> ChromiumBasedProfileReader::profiles() const {
    const std::filesystem::path file =
        appendingPath(directoryProvider()->applicationSupportDirectory(),
                      applicationSupportRelativePath_) /
        "Local State";
    if (!fileManager()->fileExists(file).isFile()) {
        return {};
    }
    const LocalState state = LocalState::decode(fileManager()->contents(file));
    std::vector<std::shared_ptr<const BrowserProfile>> profiles;
    const std::vector<bool> isPrimary = state.primaryMarks();
    for (std::size_t index = 0; index < state.infoCache.size(); ++index) {
        const LocalState::InfoCache& entry = state.infoCache[index];
        profiles.push_back(std::make_shared<ChromiumBasedProfile>(
            entry.name, browser_, isPrimary[index],
            appendingPath(applicationSupportRelativePath_, entry.folder), home_, entry.folder));
    }
    return profiles;
}

}  // namespace browsersweep

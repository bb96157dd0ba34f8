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
    const LocalState::Profile& recorded = state.profile;
    std::vector<std::shared_ptr<const BrowserProfile>> profiles;
    const std::vector<bool> isPrimary = recorded.primaryMarks();
    for (std::size_t index = 0; index < recorded.infoCache.size(); ++index) {
        const auto& [folder, info] = recorded.infoCache[index];
        profiles.push_back(std::make_shared<ChromiumBasedProfile>(
            info.name, browser_, isPrimary[index],
            appendingPath(applicationSupportRelativePath_, folder), home_, folder));
    }
    return profiles;
}

}  // namespace browsersweep

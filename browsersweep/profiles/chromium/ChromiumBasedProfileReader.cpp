#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"

#include <utility>

#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/chromium/LocalState.h"

namespace browsersweep {

ChromiumBasedProfileReader::ChromiumBasedProfileReader(
    std::filesystem::path applicationSupportRelativePath, Home home, Browser browser)
    : applicationSupportRelativePath_(std::move(applicationSupportRelativePath)),
      home_(std::move(home)),
      browser_(browser) {}

std::vector<std::shared_ptr<const BrowserProfile>> ChromiumBasedProfileReader::profiles() const {
    const std::filesystem::path file = directoryProvider()->applicationSupportDirectory() /
                                       applicationSupportRelativePath_ / "Local State";
    if (!fileManager()->fileExists(file).isFile()) {
        return {};
    }
    const LocalState state = LocalState::decode(fileManager()->contents(file));
    std::vector<std::shared_ptr<const BrowserProfile>> profiles;
    for (const LocalState::InfoCache& entry : state.infoCache) {
        profiles.push_back(std::make_shared<ChromiumBasedProfile>(
            entry.name, browser_, state.isPrimary(entry),
            applicationSupportRelativePath_ / entry.folder, home_));
    }
    return profiles;
}

}  // namespace browsersweep

#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"

#include <utility>

#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/chromium/LocalState.h"

namespace browsersweep {

ChromiumBasedProfileReader::ChromiumBasedProfileReader(
    std::filesystem::path applicationSupportRelativePath,
    std::shared_ptr<const FileManager> fileManager, Browser browser,
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider)
    : applicationSupportRelativePath_(std::move(applicationSupportRelativePath)),
      fileManager_(std::move(fileManager)),
      directoryProvider_(directoryProvider
                             ? std::move(directoryProvider)
                             : std::make_shared<FileManagerDirectoryProvider>(fileManager_)),
      browser_(browser) {}

std::vector<std::shared_ptr<const BrowserProfile>> ChromiumBasedProfileReader::profiles() const {
    const std::filesystem::path file = directoryProvider_->applicationSupportDirectory() /
                                       applicationSupportRelativePath_ / "Local State";
    if (!fileManager_->fileExists(file).isFile()) {
        return {};
    }
    const LocalState state = LocalState::decode(fileManager_->contents(file));
    std::vector<std::shared_ptr<const BrowserProfile>> profiles;
    for (const LocalState::InfoCache& entry : state.infoCache) {
        profiles.push_back(std::make_shared<ChromiumBasedProfile>(
            entry.name, browser_, state.isPrimary(entry),
            applicationSupportRelativePath_ / entry.folder, fileManager_, directoryProvider_));
    }
    return profiles;
}

}  // namespace browsersweep

#include "browsersweep/profiles/chromium/OperaProfileReader.h"

#include <optional>
#include <utility>

#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"

namespace browsersweep {

OperaProfileReader::OperaProfileReader(
    std::shared_ptr<const FileManager> fileManager,
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider)
    : fileManager_(std::move(fileManager)), directoryProvider_(std::move(directoryProvider)) {}

std::vector<std::shared_ptr<const BrowserProfile>> OperaProfileReader::profiles() const {
    return {std::make_shared<ChromiumBasedProfile>(std::nullopt, Browser::opera, true,
                                                   "com.operasoftware.Opera", fileManager_,
                                                   directoryProvider_)};
}

}  // namespace browsersweep

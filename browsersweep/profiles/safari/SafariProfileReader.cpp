#include "browsersweep/profiles/safari/SafariProfileReader.h"

#include <utility>

#include "browsersweep/profiles/safari/SafariProfile.h"

namespace browsersweep {

SafariProfileReader::SafariProfileReader(
    std::shared_ptr<const FileManager> fileManager, SystemServices services,
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider)
    : fileManager_(std::move(fileManager)),
      services_(std::move(services)),
      directoryProvider_(std::move(directoryProvider)) {}

std::vector<std::shared_ptr<const BrowserProfile>> SafariProfileReader::profiles() const {
    return {std::make_shared<SafariProfile>(fileManager_, services_, directoryProvider_)};
}

}  // namespace browsersweep

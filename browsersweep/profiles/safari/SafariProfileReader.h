#pragma once

#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/CurrentUserDirectoryProvider.h"
#include "browsersweep/platform/SystemServices.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/** Lists Safari's profiles: always exactly one. */
class BROWSERSWEEP_EXPORT SafariProfileReader : public BrowserProfileReader {
public:
    /** Without a provider the file manager's own directories are used. */
    explicit SafariProfileReader(
        std::shared_ptr<const FileManager> fileManager,
        SystemServices services = SystemServices::current(),
        std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider = {});

    /** One `SafariProfile`, whether or not Safari has ever been run. Reads no file. */
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
    SystemServices services_;
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider_;
};

}  // namespace browsersweep

#pragma once

#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/CurrentUserDirectoryProvider.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/**
 * Lists the one profile of an Opera that keeps no list of profiles: its data folder itself. The
 * catalogue's Opera row uses the general reader; this one is for hosts that meet such a browser.
 */
class BROWSERSWEEP_EXPORT OperaProfileReader : public BrowserProfileReader {
public:
    /** Without a provider the file manager's own directories are used. */
    explicit OperaProfileReader(
        std::shared_ptr<const FileManager> fileManager,
        std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider = {});

    /** Always one nameless primary `ChromiumBasedProfile`. Reads no file and never fails. */
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider_;
};

}  // namespace browsersweep

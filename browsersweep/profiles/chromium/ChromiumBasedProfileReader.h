#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/CurrentUserDirectoryProvider.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/** Lists the profiles that a Chromium-based browser records in its file "Local State". */
class BROWSERSWEEP_EXPORT ChromiumBasedProfileReader : public BrowserProfileReader {
public:
    /**
     * The path leads from the user's Application Support directory to the browser's data folder.
     * Without a provider the file manager's own directories are used.
     */
    ChromiumBasedProfileReader(
        std::filesystem::path applicationSupportRelativePath,
        std::shared_ptr<const FileManager> fileManager, Browser browser,
        std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider = {});

    /** The path below Application Support that it was made with. */
    const std::filesystem::path& applicationSupportRelativePath() const noexcept {
        return applicationSupportRelativePath_;
    }
    /** The browser that its profiles belong to. */
    Browser browser() const noexcept { return browser_; }

    /**
     * One `ChromiumBasedProfile` per recorded profile, in the file's order, whether or not its
     * folder exists. No "Local State", or a directory of that name, gives none. Throws the error of
     * reading or decoding the file.
     */
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override;

private:
    std::filesystem::path applicationSupportRelativePath_;
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider_;
    Browser browser_;
};

}  // namespace browsersweep

#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/** Lists the profiles that a Chromium-based browser records in its file "Local State". */
class BROWSERSWEEP_EXPORT ChromiumBasedProfileReader : public BrowserProfileReader {
public:
    /** The path leads from the user's Application Support directory to the browser's data folder.
     */
    ChromiumBasedProfileReader(std::filesystem::path applicationSupportRelativePath, Home home,
                               Browser browser);

    /** The path below Application Support that it was made with. */
    const std::filesystem::path& applicationSupportRelativePath() const noexcept {
        return applicationSupportRelativePath_;
    }
    /** What reaches its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept {
        return home_.fileManager();
    }
    /** Where its user's data lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return home_.directoryProvider();
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
    Home home_;
    Browser browser_;
};

}  // namespace browsersweep

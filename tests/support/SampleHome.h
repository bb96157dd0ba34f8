#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/SystemServices.h"

#include "tests/support/Database.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::tests {

/** The files of a folder: contents by relative path, folders with a "/" at the end, links as such.
 */
using Files = std::map<std::string, std::string>;

/** The names of what differs between two sets of files, other than in these paths. */
std::vector<std::string> differences(const Files& before, const Files& after);

/** Reads all files below a folder. */
Files filesBelow(const std::filesystem::path& folder);

/**
 * A home folder with browsers in it, each with one profile: small real databases, lists, cookie
 * files and cache trees. Beside everything that a clean may delete lies something that it may not:
 * other files in the same folder, other tables in the same database, rows that bookmarks need.
 */
class SampleHome {
public:
    explicit SampleHome(std::span<const Browser> browsers = allBrowsers);

    const std::filesystem::path& path() const noexcept { return folder_.path(); }

    /** The real file system below this home alone. */
    std::shared_ptr<const FileManager> fileManager() const;

    /** Services that run nothing, log nothing and keep their cookies to themselves. */
    static SystemServices services();

    /** A browser's cleaner over some file manager. */
    static std::unique_ptr<const BrowserCleaner> cleaner(
        Browser browser, std::shared_ptr<const FileManager> fileManager);

    /** The folder of temporary files, which is no part of `files`. */
    std::filesystem::path temporaryFolder() const { return path() / "tmp"; }

    /** Everything in the home as it is now. */
    Files files() const;

    /** The paths of all that is not as it was made: everything is read and compared. */
    std::vector<std::string> changes() const;

    /** Puts everything back as it was made, and empties the temporary folder. */
    void restore() const { restore(changes()); }
    /** The same, where it is known what has changed. */
    void restore(const std::vector<std::string>& changed) const;

    /**
     * What no clean may do, each by its path: data that was changed, added or lost beside what is
     * selected; a database that is gone, fails SQLite's own check or lacks other rows.
     */
    std::vector<std::string> harm() const { return harm(changes()); }
    /** The same, where it is known what has changed. */
    std::vector<std::string> harm(const std::vector<std::string>& changed) const;

    /** The databases, as paths below the home. */
    const std::set<std::string>& databases() const noexcept { return databases_; }

private:
    void add(Browser browser);
    void addChromium(std::string_view folder);
    void addFirefox();
    void addSafari();
    void addCacheTree(const std::string& folder);
    void selected(const std::string& file, std::string_view contents);
    void precious(const std::string& file, std::string_view contents);
    Database database(const std::string& file, const std::string& sql);
    std::string databaseHarm(const std::string& name) const;

    TemporaryFolder folder_{folderInMemory()};
    std::set<std::string> selected_;
    std::set<std::string> databases_;
    std::map<std::string, std::string> preciousRows_;
    Files original_;
};

}  // namespace browsersweep::tests

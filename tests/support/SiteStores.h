#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/traces/TraceStores.h"

#include "tests/support/TemporaryFolder.h"

namespace browsersweep::tests {

/** A home with a profile of Chromium, for tests of what sites left there. */
class ChromiumHome {
public:
    ChromiumHome();
    ChromiumHome(const ChromiumHome&) = delete;
    ChromiumHome& operator=(const ChromiumHome&) = delete;
    ~ChromiumHome();

    const std::filesystem::path& data() const noexcept { return folders.data; }
    const std::filesystem::path& cache() const noexcept { return folders.cache; }

    /** Writes a file below the profile's folder, or, for what is below "cache:", its cache. */
    std::filesystem::path write(std::string_view place, std::string_view contents) const;

    /** The relative paths of the files below the home that hold a text. */
    std::vector<std::string> filesWith(std::string_view text) const;

    /** The relative paths of all files and folders below the profile's folder. */
    std::vector<std::string> names() const;

    TemporaryFolder folder{folderInMemory()};
    ProfileFolders folders;
    std::shared_ptr<const FileManager> manager;
};

/** The store at a path, which must be one of these. */
std::shared_ptr<const TraceStore> storeAt(const TraceStores& stores,
                                          const std::filesystem::path& path);

/** A request of everything, with the hosts that are known. */
ForgetRequest everything(const KnownHosts& hosts = {});
/** A request of only these sites. */
ForgetRequest only(const std::set<std::string>& names, const KnownHosts& hosts = {});
/** A request of all but these sites. */
ForgetRequest allBut(const std::set<std::string>& names, const KnownHosts& hosts = {});

/** What a listing says in short: "site kind items" for each trace, and "? kind items". */
std::vector<std::string> inShort(const TraceListing& listing);

/** The hosts of a listing. */
std::set<std::string> hostsOf(const TraceListing& listing);

}  // namespace browsersweep::tests

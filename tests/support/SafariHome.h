#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/home/Home.h"
#include "browsersweep/traces/TraceStores.h"

#include "tests/support/TemporaryFolder.h"

namespace browsersweep::tests {

/** A home with Safari's files, for tests of what sites left there. */
class SafariHome {
public:
    /** Without services, those that touch nothing. */
    SafariHome();
    explicit SafariHome(SystemServices services);

    /** The user's Library folder, and the one in Safari's container. */
    std::filesystem::path library() const { return folder / "Library"; }
    std::filesystem::path container() const {
        return library() / "Containers/com.apple.Safari/Data/Library";
    }

    /** Writes a file below Library, or, for what is below "container:", below the container's. */
    std::filesystem::path write(std::string_view place, std::string_view contents) const;

    /** A store of the profile that every user has, at a path of the same form. */
    std::shared_ptr<const TraceStore> store(std::string_view place) const;

    /** The stores of that profile, and those that all profiles share. */
    TraceStores stores() const;

    /** The relative paths of all that is below a place of the same form, sorted. */
    std::vector<std::string> names(std::string_view place) const;

    TemporaryFolder folder{folderInMemory()};
    std::shared_ptr<const FileManager> manager;
    Home home;

private:
    std::filesystem::path at(std::string_view place) const;
};

/** A text as WebKit encodes it, in letters of one byte. */
std::string webKitText(std::string_view text);

/** An "origin" file: of a page, and of a frame in it; a port of 0 is the scheme's own. */
std::string originRecord(const std::string& pageHost, const std::string& frameHost,
                         unsigned port = 0, const std::string& scheme = "https");

}  // namespace browsersweep::tests

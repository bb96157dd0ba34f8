// What a project that uses the library does: measures, cleans, and catches the library's errors.

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/documents/DecodingError.h"

namespace bs = browsersweep;

namespace {

const auto everyProfile = [](const bs::BrowserProfile&) { return true; };

bs::CleanableDataSize cleanChrome(const std::filesystem::path& home) {
    const auto chrome = bs::cleaner(bs::Browser::googleChrome, bs::Home::at(home));
    return chrome->cleanableData(everyProfile).cleanAndReturnSize({});
}

// An error keeps its type on its way out of the library, a shared one too.
bool brokenFileIsADecodingError(const std::filesystem::path& home) {
    std::ofstream(home / "Library/Application Support/Google/Chrome/Local State") << "no JSON";
    try {
        cleanChrome(home);
    } catch (const bs::DecodingError& error) {
        return error.kind() == bs::DecodingError::Kind::dataCorrupted;
    }
    return false;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    const std::filesystem::path home = arguments[1];
    if (cleanChrome(home).itemCount.value <= 0 || cleanChrome(home).itemCount.value != 0) {
        std::fputs("cleaning a sample home did not empty it\n", stderr);
        return 1;
    }
    if (!brokenFileIsADecodingError(home)) {
        std::fputs("an error lost its type\n", stderr);
        return 1;
    }
}

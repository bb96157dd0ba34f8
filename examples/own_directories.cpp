// Reads profiles from a place that is not a home folder, such as a backup of one: the folders are
// laid out in another way, so a provider says where they are.

#include <filesystem>
#include <iostream>
#include <memory>
#include <utility>

#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"

namespace bs = browsersweep;

namespace {

/** A backup that keeps what lies in Application Support in "support" and the caches in "caches". */
class BackupDirectories : public bs::CurrentUserDirectoryProvider {
public:
    explicit BackupDirectories(std::filesystem::path backup) : backup_(std::move(backup)) {}

    std::filesystem::path applicationSupportDirectory() const override {
        return backup_ / "support";
    }
    std::filesystem::path cachesDirectory() const override { return backup_ / "caches"; }
    std::filesystem::path libraryDirectory() const override { return backup_; }

private:
    std::filesystem::path backup_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: own_directories HOME\n";
        return 2;
    }
    // The backup to read: here it is made of the home folder's own files.
    const std::filesystem::path home = arguments[1];
    const std::filesystem::path backup = home / "backup";
    std::filesystem::create_directory(backup);
    std::filesystem::copy(home / "Library/Application Support", backup / "support",
                          std::filesystem::copy_options::recursive);

    const bs::Home place(bs::FileManager::defaultManager(),
                         std::make_shared<BackupDirectories>(backup));
    const bs::ChromiumBasedProfileReader reader("Google/Chrome", place, bs::Browser::googleChrome);
    for (const auto& profile : reader.profiles()) {
        std::cout << profile->name().value_or("(no name)") << ": "
                  << profile->cleanableData().size().itemCount.value << " items\n";
    }
}

#include "browsersweep/traces/safari/internal/SafariRowFiles.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

char inSmall(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string stemOf(std::string_view name) {
    std::string stem(name.substr(0, name.find('.')));
    std::transform(stem.begin(), stem.end(), stem.begin(), inSmall);
    return stem;
}

std::vector<RowFile> filesIn(const FileManager& fileManager, const fs::path& folder) {
    std::vector<RowFile> files;
    for (const FolderEntry& entry : fileManager.entries(folder)) {
        std::string stem = stemOf(entry.name);
        if (entry.kind == FolderEntry::Kind::file && !stem.empty()) {
            files.push_back({folder / entry.name, std::move(stem)});
        }
    }
    return files;
}

bool isPicture(std::string_view name) noexcept {
    return name.ends_with(".png") || name.ends_with(".jpeg") || name.ends_with(".jpg") ||
           name.ends_with(".ktx");
}

}  // namespace

fs::path iconsBeside(const fs::path& database) {
    return database.parent_path() / "favicons";
}

fs::path imagesBeside(const fs::path& database) {
    return database.parent_path() / "Images";
}

fs::path bodiesBeside(const fs::path& database) {
    return database.parent_path() / "fsCachedData";
}

fs::path folderOfSnapshots(const fs::path& database) {
    return database.parent_path();
}

std::vector<RowFile> findIcons(const FileManager& fileManager, const fs::path& database) {
    return filesIn(fileManager, iconsBeside(database));
}

std::vector<RowFile> findImages(const FileManager& fileManager, const fs::path& database) {
    return filesIn(fileManager, imagesBeside(database));
}

std::vector<RowFile> findBodies(const FileManager& fileManager, const fs::path& database) {
    return filesIn(fileManager, bodiesBeside(database));
}

std::vector<RowFile> findSnapshots(const FileManager& fileManager, const fs::path& database) {
    std::vector<RowFile> files;
    const fs::path folder = database.parent_path();
    for (const FolderEntry& entry : fileManager.entries(folder)) {
        if (entry.kind == FolderEntry::Kind::file && isPicture(entry.name)) {
            files.push_back({folder / entry.name, entry.name});
        }
    }
    return files;
}

}  // namespace browsersweep

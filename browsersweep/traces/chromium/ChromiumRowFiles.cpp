#include "browsersweep/traces/chromium/internal/ChromiumRowFiles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace browsersweep {
namespace {

/** An entry's file begins with a mark, a version, and the length and a digest of its key. */
constexpr std::array<std::uint8_t, 8> entryMark{0x30, 0x5c, 0x72, 0xa7, 0x1b, 0x6d, 0xfb, 0xfc};
constexpr std::size_t keyPlace = 24;
constexpr std::size_t keySize = 32;

/** What no row has as its key. */
constexpr std::string_view unknownKey = "?";

bool isNumber(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(),
                                        [](char each) { return each >= '0' && each <= '9'; });
}

// "f956b5e5e4aa900c_0": a digest of the key, and which part of the entry it is.
bool isEntryName(std::string_view name) {
    constexpr std::size_t digestSize = 16;
    return name.size() > digestSize && name[digestSize] == '_';
}

std::string keyOfEntry(const Bytes& start) {
    const bool isEntry = start.size() == keyPlace + keySize &&
                         std::equal(entryMark.begin(), entryMark.end(), start.begin());
    return isEntry ? std::string(start.begin() + keyPlace, start.end()) : std::string(unknownKey);
}

}  // namespace

std::filesystem::path folderOf(const std::filesystem::path& database) {
    return database.parent_path();
}

std::filesystem::path cacheBeside(const std::filesystem::path& database) {
    return database.parent_path() / "cache";
}

std::vector<RowFile> findBucketFolders(const FileManager& fileManager,
                                       const std::filesystem::path& database) {
    const std::filesystem::path folder = folderOf(database);
    std::vector<RowFile> files;
    for (const FolderEntry& entry : fileManager.entries(folder)) {
        if (entry.kind == FolderEntry::Kind::folder && isNumber(entry.name)) {
            files.push_back({folder / entry.name, entry.name, true});
        }
    }
    return files;
}

std::vector<RowFile> findDictionaryEntries(const FileManager& fileManager,
                                           const std::filesystem::path& database) {
    const std::filesystem::path cache = cacheBeside(database);
    std::vector<RowFile> files;
    for (const FolderEntry& entry : fileManager.entries(cache)) {
        if (entry.kind == FolderEntry::Kind::file && isEntryName(entry.name)) {
            const auto file = cache / entry.name;
            files.push_back({file, keyOfEntry(fileManager.firstBytes(file, keyPlace + keySize))});
        }
    }
    // It has a digest of each key. The browser makes it anew where it is missing.
    const auto index = cache / "index-dir" / "the-real-index";
    if (fileManager.fileExists(index).isFile()) {
        files.push_back({index, {}});
    }
    return files;
}

}  // namespace browsersweep

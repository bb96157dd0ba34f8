#include "browsersweep/sites/internal/StoreFiles.h"

#include <algorithm>
#include <array>
#include <optional>
#include <system_error>
#include <utility>

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

template <typename Read>
Bytes ifThere(const Read& read) {
    try {
        return read();
    } catch (const fs::filesystem_error& error) {
        if (error.code() != std::errc::no_such_file_or_directory) {
            throw;
        }
        return {};
    }
}

void removeEntry(const FileManager& fileManager, const fs::path& path, FolderEntry::Kind kind) {
    if (kind == FolderEntry::Kind::folder) {
        fileManager.removeFolder(path);
        return;
    }
    fileManager.removeFile(path);
    if (const auto control = fileManager.control()) {
        control->count({1, 0, 0});
    }
}

}  // namespace

std::optional<FolderEntry> entryIfThere(const FileManager& fileManager, const fs::path& path) {
    const std::string name = path.filename().string();
    for (FolderEntry& entry : fileManager.entries(path.parent_path())) {
        if (entry.name == name) {
            return std::move(entry);
        }
    }
    return std::nullopt;
}

CleanableDataSize sizeOfAll(const FileManager& fileManager, const fs::path& path) {
    const auto entry = entryIfThere(fileManager, path);
    return entry ? sizeOfAll(fileManager, path.parent_path(), *entry) : CleanableDataSize();
}

CleanableDataSize sizeOfAll(const FileManager& fileManager, const fs::path& folder,
                            const FolderEntry& entry) {
    if (entry.kind != FolderEntry::Kind::folder) {
        return {1, entry.size};
    }
    const auto control = fileManager.control();
    CleanableDataSize sum;
    const auto walk = fileManager.enumerator(folder / entry.name);
    while (walk && walk->next()) {
        continueOrThrow(control.get());
        if (const auto bytes = walk->fileSize()) {
            sum = sum + CleanableDataSize{1, *bytes};
        }
    }
    return sum;
}

void removeAll(const FileManager& fileManager, const fs::path& folder, const FolderEntry& entry) {
    continueOrThrow(fileManager.control().get());
    removeEntry(fileManager, folder / entry.name, entry.kind);
}

void removeAll(const FileManager& fileManager, const fs::path& path) {
    continueOrThrow(fileManager.control().get());
    if (const auto entry = entryIfThere(fileManager, path)) {
        removeEntry(fileManager, path, entry->kind);
    }
}

// The names are such that no file in a folder below has one of them.
void removeNamed(const FileManager& fileManager, const fs::path& folder,
                 const std::set<std::string, std::less<>>& names) {
    const auto control = fileManager.control();
    const auto walk = names.empty() ? nullptr : fileManager.enumerator(folder);
    while (walk && walk->next()) {
        continueOrThrow(control.get());
        if (walk->isDirectory() == false && names.contains(walk->name())) {
            walk->remove();
            if (control) {
                control->count({1, 0, 0});
            }
        }
    }
}

void removeLeftBeside(const FileManager& fileManager, const fs::path& path) {
    const std::string name = path.filename().string();
    for (const FolderEntry& entry : fileManager.entries(path.parent_path())) {
        if (FileManager::isLeftByReplacing(entry.name, name)) {
            removeEntry(fileManager, path.parent_path() / entry.name, entry.kind);
        }
    }
}

bool isBrowsersOwn(std::string_view origin) noexcept {
    constexpr std::array<std::string_view, 5> schemes{
        "chrome-extension", "chrome", "chrome-untrusted", "chrome-search", "devtools"};
    const std::string_view scheme = origin.substr(0, origin.find_first_of(":_"));
    return scheme.size() < origin.size() &&
           std::find(schemes.begin(), schemes.end(), scheme) != schemes.end();
}

Bytes firstBytesIfThere(const FileManager& fileManager, const fs::path& file, std::size_t count) {
    return ifThere([&] { return fileManager.firstBytes(file, count); });
}

Bytes lastBytesIfThere(const FileManager& fileManager, const fs::path& file, std::size_t count) {
    return ifThere([&] { return fileManager.lastBytes(file, count); });
}

std::optional<Bytes> contentsIfThere(const FileManager& fileManager, const fs::path& file) {
    const auto entry = entryIfThere(fileManager, file);
    if (!entry) {
        return std::nullopt;
    }
    if (entry->kind != FolderEntry::Kind::file) {
        throw fs::filesystem_error("not a regular file", file,
                                   std::make_error_code(std::errc::invalid_argument));
    }
    return fileManager.contents(file);
}

std::string_view textOf(BytesView bytes) noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the same bytes, as text
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace browsersweep

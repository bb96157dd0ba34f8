#include "browsersweep/sites/internal/SimpleCache.h"

#include <algorithm>
#include <utility>

#include "browsersweep/sites/internal/StoreFiles.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t hashLength = 16;

/** Magic number, version, length of the key, hash of the key, four bytes of nothing. */
constexpr std::size_t headerSize = 24;
constexpr std::size_t placeOfLength = 12;
constexpr std::string_view magic = "\x30\x5C\x72\xA7\x1B\x6D\xFB\xFC";
/** Nearly every key is shorter than this, and read with its header. */
constexpr std::size_t usualSize = 1024;
constexpr std::size_t largestKey = std::size_t{16} << 20;

bool isEntryName(std::string_view name) noexcept {
    return name.size() == hashLength + 2 && name[hashLength] == '_' &&
           std::string_view("01s").find(name.back()) != std::string_view::npos &&
           name.find_first_not_of("0123456789abcdef") == hashLength;
}

bool isPartOfBlocks(const FolderEntry& entry) noexcept {
    return entry.name.starts_with("data_") && entry.kind == FolderEntry::Kind::file;
}

std::size_t lengthOfKey(std::string_view header) noexcept {
    std::size_t length = 0;
    for (std::size_t place = placeOfLength + 4; place > placeOfLength; --place) {
        length = length << 8U | static_cast<unsigned char>(header[place - 1]);
    }
    return length;
}

/** What is damaged, or gone by now, has no key. */
std::optional<std::string> keyIn(const FileManager& fileManager, const fs::path& file) {
    Bytes bytes = firstBytesIfThere(fileManager, file, usualSize);
    if (bytes.size() < headerSize || !textOf(bytes).starts_with(magic)) {
        return std::nullopt;
    }
    const std::size_t length = lengthOfKey(textOf(bytes));
    if (length > largestKey) {
        return std::nullopt;
    }
    if (headerSize + length > usualSize) {
        bytes = firstBytesIfThere(fileManager, file, headerSize + length);
    }
    if (bytes.size() < headerSize + length) {
        return std::nullopt;
    }
    return std::string(textOf(bytes).substr(headerSize, length));
}

}  // namespace

SimpleCache::SimpleCache(fs::path folder, std::shared_ptr<const FileManager> fileManager,
                         std::shared_ptr<KeyMemory> memory)
    : folder_(std::move(folder)),
      fileManager_(std::move(fileManager)),
      memory_(std::move(memory)) {}

std::optional<std::string> SimpleCache::keyOf(const FolderEntry& entry, Date beforeListing) const {
    if (entry.kind != FolderEntry::Kind::file) {
        return std::nullopt;
    }
    const auto read = [&] { return keyIn(*fileManager_, folder_ / entry.name); };
    return memory_ ? memory_->keyOf(entry, beforeListing, read) : read();
}

bool SimpleCache::visit(const std::function<void(SimpleCacheFile&&)>& visit) const {
    const auto control = fileManager_->control();
    const Date beforeListing = ReferenceClock::now();
    auto entries = fileManager_->entries(folder_);
    if (std::any_of(entries.begin(), entries.end(), isPartOfBlocks)) {
        return false;
    }
    for (FolderEntry& entry : entries) {
        continueOrThrow(control.get());
        if (entry.kind != FolderEntry::Kind::folder && isEntryName(entry.name)) {
            auto key = keyOf(entry, beforeListing);
            visit({std::move(entry.name), std::move(key), entry.size, entry.modified});
        }
    }
    return true;
}

void SimpleCache::remove(const std::set<std::string, std::less<>>& names) const {
    if (!names.empty()) {
        removeNamed(*fileManager_, folder_, names);
        removeAll(*fileManager_, index());
    }
}

}  // namespace browsersweep

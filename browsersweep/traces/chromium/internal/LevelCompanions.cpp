#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/sites/internal/SimpleCache.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/traces/chromium/internal/LevelSchemas.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

bool isNumber(std::string_view text) noexcept {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/** "ORIGIN:<origin identifier>" has the name of a folder as its value. */
class FileSystemFolders : public LevelCompanions {
public:
    FileSystemFolders(fs::path parent, std::shared_ptr<const FileManager> fileManager)
        : parent_(std::move(parent)), fileManager_(std::move(fileManager)) {}

    CleanableDataSize sizeOf(std::string_view key, std::string_view value) override {
        return isFolder(key, value) ? sizeOfAll(*fileManager_, parent_ / value)
                                    : CleanableDataSize();
    }

    void remove(std::string_view key, std::string_view value) override {
        if (isFolder(key, value)) {
            browsersweep::removeAll(*fileManager_, parent_ / value);
        }
    }

    void removeAll() override {
        for (const FolderEntry& entry : fileManager_->entries(parent_)) {
            if (isNumber(entry.name)) {
                browsersweep::removeAll(*fileManager_, parent_, entry);
            }
        }
    }

private:
    static bool isFolder(std::string_view key, std::string_view value) noexcept {
        return key.starts_with("ORIGIN:") && isNumber(value);
    }

    fs::path parent_;
    std::shared_ptr<const FileManager> fileManager_;
};

/** "RES:<version>\0<number>" is a script, and the number its key in the cache. */
class ServiceWorkerScripts : public LevelCompanions {
public:
    ServiceWorkerScripts(fs::path cache, std::shared_ptr<const FileManager> fileManager)
        : cache_(std::move(cache), fileManager), fileManager_(std::move(fileManager)) {
        cache_.visit([this](const SimpleCacheFile& file) {
            if (file.key) {
                files_[*file.key].push_back(file);
            }
        });
    }

    CleanableDataSize sizeOf(std::string_view key, std::string_view /*value*/) override {
        CleanableDataSize sum;
        for (const SimpleCacheFile& file : filesOf(key)) {
            sum = sum + CleanableDataSize{0, file.size};
        }
        return sum;
    }

    void remove(std::string_view key, std::string_view /*value*/) override {
        const auto files = filesOf(key);
        if (!files.empty() && !isIndexGone_) {
            browsersweep::removeAll(*fileManager_, cache_.index());
            isIndexGone_ = true;
        }
        for (const SimpleCacheFile& file : files) {
            FolderEntry entry;
            entry.name = file.name;
            browsersweep::removeAll(*fileManager_, cache_.folder(), entry);
        }
        forgetFilesOf(key);  // another version may have the same script
    }

    void removeAll() override { browsersweep::removeAll(*fileManager_, cache_.folder()); }

private:
    static std::string_view numberIn(std::string_view key) noexcept {
        const auto zero = key.find('\0');
        return key.starts_with("RES:") && zero != std::string_view::npos ? key.substr(zero + 1)
                                                                         : std::string_view();
    }

    std::vector<SimpleCacheFile> filesOf(std::string_view key) const {
        const auto found = files_.find(numberIn(key));
        return found == files_.end() ? std::vector<SimpleCacheFile>() : found->second;
    }

    void forgetFilesOf(std::string_view key) {
        const auto found = files_.find(numberIn(key));
        if (found != files_.end()) {
            files_.erase(found);
        }
    }

    SimpleCache cache_;
    bool isIndexGone_ = false;
    std::shared_ptr<const FileManager> fileManager_;
    std::map<std::string, std::vector<SimpleCacheFile>, std::less<>> files_;
};

}  // namespace

std::unique_ptr<LevelCompanions> fileSystemFolders(
    const fs::path& database, const std::shared_ptr<const FileManager>& fileManager) {
    return std::make_unique<FileSystemFolders>(database.parent_path(), fileManager);
}

std::unique_ptr<LevelCompanions> serviceWorkerScripts(
    const fs::path& database, const std::shared_ptr<const FileManager>& fileManager) {
    return std::make_unique<ServiceWorkerScripts>(database.parent_path() / "ScriptCache",
                                                  fileManager);
}

}  // namespace browsersweep

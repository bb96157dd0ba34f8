#include "browsersweep/sites/internal/RowFiles.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace browsersweep {
namespace {

CleanableDataSize sizeOfFolder(const std::filesystem::path& folder,
                               const FileManager& fileManager) {
    CleanableDataSize size;
    const std::unique_ptr<DirectoryEnumerator> entries = fileManager.enumerator(folder);
    while (entries && entries->next()) {
        if (const auto bytes = entries->fileSize()) {
            size = size + CleanableDataSize{1, *bytes};
        }
    }
    return size;
}

}  // namespace

CleanableDataSize sizeOf(const RowFile& file, const FileManager& fileManager) {
    return file.isFolder ? sizeOfFolder(file.path, fileManager)
                         : CleanableDataSize{1, fileManager.attributes(file.path).size.value_or(0)};
}

std::vector<RowFile> chosenFiles(const std::vector<RowFile>& files,
                                 const std::function<bool(const std::string& key)>& isChosen) {
    std::vector<RowFile> chosen;
    std::copy_if(files.begin(), files.end(), std::back_inserter(chosen),
                 [&](const RowFile& file) { return !file.key.empty() && isChosen(file.key); });
    if (!chosen.empty()) {
        std::copy_if(files.begin(), files.end(), std::back_inserter(chosen),
                     [](const RowFile& file) { return file.key.empty(); });
    }
    return chosen;
}

void removeRowFiles(const std::vector<RowFile>& files, const FileManager& fileManager) {
    for (const RowFile& file : files) {
        if (file.isFolder) {
            fileManager.removeFolder(file.path);
        } else {
            fileManager.removeFile(file.path);
        }
    }
}

}  // namespace browsersweep

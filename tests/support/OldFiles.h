#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "browsersweep/base/Date.h"

#include "tests/support/ForwardingFileManager.h"

namespace browsersweep::tests {

/** Tells of all files that they were changed long ago, and notes which are read in part. */
class OldFiles : public ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    std::vector<FolderEntry> entries(const std::filesystem::path& directory) const override {
        auto found = ForwardingFileManager::entries(directory);
        for (FolderEntry& entry : found) {
            entry.changed = dateFrom1970Seconds(5);
        }
        return found;
    }
    Bytes firstBytes(const std::filesystem::path& path, std::size_t count) const override {
        read.push_back(path.filename().string());
        return ForwardingFileManager::firstBytes(path, count);
    }
    Bytes lastBytes(const std::filesystem::path& path, std::size_t count) const override {
        read.push_back(path.filename().string());
        return ForwardingFileManager::lastBytes(path, count);
    }

    mutable std::vector<std::string> read;
};

}  // namespace browsersweep::tests

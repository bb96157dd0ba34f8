#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace browsersweep::tests {

/** A new folder, gone with all it holds when it goes away. */
class TemporaryFolder {
public:
    TemporaryFolder();
    /** In another folder than that for temporary files. */
    explicit TemporaryFolder(const std::filesystem::path& parent);
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& path() const noexcept { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& below) const {
        return path_ / below;
    }

    /** Writes a file, and the folders above it. Returns its path. */
    std::filesystem::path write(const std::filesystem::path& below,
                                std::string_view contents) const;

    /** Creates a folder, and those above it. Returns its path. */
    std::filesystem::path makeFolder(const std::filesystem::path& below) const;

    /** Everything in it: relative path, kind and contents, for comparing before and after. */
    std::vector<std::string> snapshot() const;

private:
    std::filesystem::path path_;
};

/** A whole file as text. */
std::string readFile(const std::filesystem::path& path);

/**
 * A folder that is kept in memory, for tests that write databases a thousand times: there nothing
 * waits for a disk. The folder for temporary files where the system has none.
 */
std::filesystem::path folderInMemory();

}  // namespace browsersweep::tests

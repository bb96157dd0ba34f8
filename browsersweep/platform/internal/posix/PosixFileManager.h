#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/posix/Gate.h"

namespace browsersweep::posix {

/** The real file system. */
class PosixFileManager : public FileManager {
public:
    /** With a home folder, the user's directories are those below it, else the system's. */
    explicit PosixFileManager(std::optional<std::filesystem::path> home,
                              std::shared_ptr<OperationControl> control = nullptr)
        : home_(std::move(home)), control_(std::move(control)) {}

    std::shared_ptr<OperationControl> control() const noexcept override { return control_; }
    bool servesCurrentUser() const noexcept override { return !home_; }
    FileExistence fileExists(const std::filesystem::path& path) const noexcept override;
    FileAttributes attributes(const std::filesystem::path& path) const override;
    Bytes contents(const std::filesystem::path& path) const override;
    Bytes firstBytes(const std::filesystem::path& path, std::size_t count) const override;
    Bytes lastBytes(const std::filesystem::path& path, std::size_t count) const override;
    void replace(const std::filesystem::path& path, BytesView contents) const override;
    void copy(const std::filesystem::path& from, const std::filesystem::path& to) const override;
    void removeFile(const std::filesystem::path& path) const override;
    void removeTemporaryFolder(const std::filesystem::path& path) const override;
    bool removeFolder(const std::filesystem::path& path) const override;
    bool replaceFolder(const std::filesystem::path& path,
                       const std::filesystem::path& contents) const override;
    bool replaceFolderWithFiles(const std::filesystem::path& path,
                                const std::map<std::string, Bytes>& files) const override;
    void createDirectory(const std::filesystem::path& path) const override;
    std::filesystem::path temporaryDirectory() const override;
    std::filesystem::path homeDirectory() const override;
    std::vector<std::filesystem::path> directories(SearchPathDirectory directory) const override;
    bool reaches(const std::filesystem::path& path) const override;
    std::vector<FolderEntry> entries(const std::filesystem::path& directory) const override;
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const override;

private:
    Gate gate() const;

    std::optional<std::filesystem::path> home_;
    std::shared_ptr<OperationControl> control_;
};

}  // namespace browsersweep::posix

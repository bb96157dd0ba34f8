#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "tests/support/ForwardingFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::tests {

/**
 * The real file system below one folder, with the home and the temporary folder in it. An operation
 * on any path outside fails the running test and is refused: no test may reach a real home.
 */
class GuardedFileManager : public ForwardingFileManager {
public:
    /** Home is the folder itself; the temporary folder is "tmp" in it, made when asked for. */
    explicit GuardedFileManager(const std::filesystem::path& root);

    static std::shared_ptr<const FileManager> forFixture(const TemporaryFolder& folder);

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
    bool reaches(const std::filesystem::path& path) const override;
    std::vector<FolderEntry> entries(const std::filesystem::path& directory) const override;
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const override;

private:
    bool isInside(const std::filesystem::path& path) const;
    const std::filesystem::path& checked(const std::filesystem::path& path) const;

    std::filesystem::path root_;
};

}  // namespace browsersweep::tests

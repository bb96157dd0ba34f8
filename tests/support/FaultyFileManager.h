#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "tests/support/ForwardingFileManager.h"

namespace browsersweep::tests {

/** Which operations fail, and how. */
struct Fault {
    enum class Duration { once, fromThenOn };

    std::size_t atOperation = 0;  ///< the first operation is 1; 0 fails none
    std::errc error = std::errc::io_error;
    Duration duration = Duration::once;
};

/** An operation that was made to fail: the function's name, and the path or name it was about. */
struct FailedOperation {
    std::string_view function;
    std::filesystem::path path;
};

/** Counts the operations of a file manager and its enumerators, and says which of them fail. */
class FaultPlan {
public:
    explicit FaultPlan(Fault fault) noexcept : fault_(fault) {}

    /** Counts one operation; true if it is to fail. */
    bool nextFails(std::string_view function, const std::filesystem::path& path) noexcept;
    std::size_t operationCount() const noexcept { return count_; }
    std::errc error() const noexcept { return fault_.error; }
    const std::vector<FailedOperation>& failed() const noexcept { return failed_; }

private:
    Fault fault_;
    std::size_t count_ = 0;
    std::vector<FailedOperation> failed_;
};

/**
 * A file manager that fails its n-th operation: every question and every deed counts, those of its
 * enumerators too. What cannot throw answers as if nothing were there.
 */
class FaultyFileManager : public ForwardingFileManager {
public:
    FaultyFileManager(std::shared_ptr<const FileManager> target, Fault fault);

    /** How many operations there were so far. */
    std::size_t operationCount() const noexcept { return plan_->operationCount(); }

    /** The operations that failed so far, in their order. */
    const std::vector<FailedOperation>& failed() const noexcept { return plan_->failed(); }

    FileExistence fileExists(const std::filesystem::path& path) const noexcept override;
    FileAttributes attributes(const std::filesystem::path& path) const override;
    Bytes contents(const std::filesystem::path& path) const override;
    Bytes firstBytes(const std::filesystem::path& path, std::size_t length) const override;
    Bytes lastBytes(const std::filesystem::path& path, std::size_t length) const override;
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
    bool reaches(const std::filesystem::path& path) const override;
    std::vector<FolderEntry> entries(const std::filesystem::path& directory) const override;
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const override;

private:
    void count(std::string_view function, const std::filesystem::path& path) const;

    std::shared_ptr<FaultPlan> plan_;
};

}  // namespace browsersweep::tests

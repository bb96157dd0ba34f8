#include "cli/BoundedFileManager.h"

#include <limits>
#include <optional>
#include <system_error>
#include <utility>

namespace browsersweep::cli {
namespace {

void take(std::optional<std::uint64_t> size, std::uint64_t& left,
          const std::filesystem::path& path) {
    if (size.value_or(0) > left) {
        throw std::filesystem::filesystem_error("the files are larger than can be counted", path,
                                                std::make_error_code(std::errc::value_too_large));
    }
    left -= size.value_or(0);
}

class Enumerator : public ForwardingEnumerator {
public:
    Enumerator(std::unique_ptr<DirectoryEnumerator> target, std::shared_ptr<std::uint64_t> left,
               std::filesystem::path directory)
        : ForwardingEnumerator(std::move(target)),
          left_(std::move(left)),
          directory_(std::move(directory)) {}

    std::optional<std::uint64_t> fileSize() override {
        const auto size = ForwardingEnumerator::fileSize();
        try {
            take(size, *left_, directory_);
        } catch (const std::filesystem::filesystem_error&) {
            *left_ += std::exchange(taken_, 0);  // a folder that fails counts nothing at all
            throw;
        }
        taken_ += size.value_or(0);
        return size;
    }

private:
    std::shared_ptr<std::uint64_t> left_;
    std::uint64_t taken_ = 0;
    std::filesystem::path directory_;
};

}  // namespace

BoundedFileManager::BoundedFileManager(std::shared_ptr<const FileManager> target)
    : ForwardingFileManager(std::move(target)),
      left_(std::make_shared<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {}

FileAttributes BoundedFileManager::attributes(const std::filesystem::path& path) const {
    const FileAttributes found = ForwardingFileManager::attributes(path);
    take(found.size, *left_, path);
    return found;
}

std::unique_ptr<DirectoryEnumerator> BoundedFileManager::enumerator(
    const std::filesystem::path& directory) const {
    auto target = ForwardingFileManager::enumerator(directory);
    return target ? std::make_unique<Enumerator>(std::move(target), left_, directory) : nullptr;
}

}  // namespace browsersweep::cli

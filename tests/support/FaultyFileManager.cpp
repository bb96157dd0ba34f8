#include "tests/support/FaultyFileManager.h"

#include <utility>

namespace browsersweep::tests {
namespace {

namespace fs = std::filesystem;

void countOrThrow(FaultPlan& plan, std::string_view function, const fs::path& path) {
    if (plan.nextFails(function, path)) {
        throw fs::filesystem_error("injected", path, std::make_error_code(plan.error()));
    }
}

class FaultyEnumerator : public ForwardingEnumerator {
public:
    FaultyEnumerator(std::unique_ptr<DirectoryEnumerator> target, std::shared_ptr<FaultPlan> plan)
        : ForwardingEnumerator(std::move(target)), plan_(std::move(plan)) {}

    bool next() override {
        countOrThrow(*plan_, "next", {});
        return ForwardingEnumerator::next();
    }
    std::optional<bool> isDirectory() override {
        countOrThrow(*plan_, "isDirectory of entry", name());
        return ForwardingEnumerator::isDirectory();
    }
    std::optional<std::uint64_t> fileSize() override {
        countOrThrow(*plan_, "fileSize of entry", name());
        return ForwardingEnumerator::fileSize();
    }
    std::optional<Date> creationDate() noexcept override {
        return plan_->nextFails("creationDate", name()) ? std::nullopt
                                                        : ForwardingEnumerator::creationDate();
    }
    void remove() override {
        countOrThrow(*plan_, "remove of entry", name());
        ForwardingEnumerator::remove();
    }

private:
    std::shared_ptr<FaultPlan> plan_;
};

}  // namespace

bool FaultPlan::nextFails(std::string_view function, const fs::path& path) noexcept {
    ++count_;
    const bool fails = fault_.atOperation != 0 &&
                       (fault_.duration == Fault::Duration::once ? count_ == fault_.atOperation
                                                                 : count_ >= fault_.atOperation);
    if (fails) {
        failed_.push_back({function, path});
    }
    return fails;
}

FaultyFileManager::FaultyFileManager(std::shared_ptr<const FileManager> target, Fault fault)
    : ForwardingFileManager(std::move(target)), plan_(std::make_shared<FaultPlan>(fault)) {}

void FaultyFileManager::count(std::string_view function, const fs::path& path) const {
    countOrThrow(*plan_, function, path);
}

FileExistence FaultyFileManager::fileExists(const fs::path& path) const noexcept {
    return plan_->nextFails("fileExists", path) ? FileExistence{}
                                                : ForwardingFileManager::fileExists(path);
}

FileAttributes FaultyFileManager::attributes(const fs::path& path) const {
    count("attributes", path);
    return ForwardingFileManager::attributes(path);
}

Bytes FaultyFileManager::contents(const fs::path& path) const {
    count("contents", path);
    return ForwardingFileManager::contents(path);
}

Bytes FaultyFileManager::firstBytes(const fs::path& path, std::size_t length) const {
    count("firstBytes", path);
    return ForwardingFileManager::firstBytes(path, length);
}

Bytes FaultyFileManager::lastBytes(const fs::path& path, std::size_t length) const {
    count("lastBytes", path);
    return ForwardingFileManager::lastBytes(path, length);
}

void FaultyFileManager::replace(const fs::path& path, BytesView contents) const {
    count("replace", path);
    ForwardingFileManager::replace(path, contents);
}

void FaultyFileManager::copy(const fs::path& from, const fs::path& to) const {
    count("copy", to);
    ForwardingFileManager::copy(from, to);
}

void FaultyFileManager::removeFile(const fs::path& path) const {
    count("removeFile", path);
    ForwardingFileManager::removeFile(path);
}

void FaultyFileManager::removeTemporaryFolder(const fs::path& path) const {
    count("removeTemporaryFolder", path);
    ForwardingFileManager::removeTemporaryFolder(path);
}

bool FaultyFileManager::removeFolder(const fs::path& path) const {
    count("removeFolder", path);
    return ForwardingFileManager::removeFolder(path);
}

bool FaultyFileManager::replaceFolder(const fs::path& path, const fs::path& contents) const {
    count("replaceFolder", path);
    return ForwardingFileManager::replaceFolder(path, contents);
}

bool FaultyFileManager::replaceFolderWithFiles(const fs::path& path,
                                               const std::map<std::string, Bytes>& files) const {
    count("replaceFolderWithFiles", path);
    return ForwardingFileManager::replaceFolderWithFiles(path, files);
}

void FaultyFileManager::createDirectory(const fs::path& path) const {
    count("createDirectory", path);
    ForwardingFileManager::createDirectory(path);
}

bool FaultyFileManager::reaches(const fs::path& path) const {
    count("reaches", path);
    return ForwardingFileManager::reaches(path);
}

std::vector<FolderEntry> FaultyFileManager::entries(const fs::path& directory) const {
    count("entries", directory);
    return ForwardingFileManager::entries(directory);
}

std::unique_ptr<DirectoryEnumerator> FaultyFileManager::enumerator(
    const fs::path& directory) const {
    count("enumerator", directory);
    auto target = ForwardingFileManager::enumerator(directory);
    return target ? std::make_unique<FaultyEnumerator>(std::move(target), plan_) : nullptr;
}

}  // namespace browsersweep::tests

#include "tests/support/FaultyFileManager.h"

#include <utility>

namespace browsersweep::tests {
namespace {

namespace fs = std::filesystem;

void countOrThrow(FaultPlan& plan, const fs::path& path) {
    if (plan.nextFails()) {
        throw fs::filesystem_error("injected", path, std::make_error_code(plan.error()));
    }
}

class FaultyEnumerator : public ForwardingEnumerator {
public:
    FaultyEnumerator(std::unique_ptr<DirectoryEnumerator> target, std::shared_ptr<FaultPlan> plan)
        : ForwardingEnumerator(std::move(target)), plan_(std::move(plan)) {}

    bool next() override {
        countOrThrow(*plan_, {});
        return ForwardingEnumerator::next();
    }
    std::optional<bool> isDirectory() override {
        countOrThrow(*plan_, name());
        return ForwardingEnumerator::isDirectory();
    }
    std::optional<std::uint64_t> fileSize() override {
        countOrThrow(*plan_, name());
        return ForwardingEnumerator::fileSize();
    }
    std::optional<Date> creationDate() noexcept override {
        return plan_->nextFails() ? std::nullopt : ForwardingEnumerator::creationDate();
    }
    void remove() override {
        countOrThrow(*plan_, name());
        ForwardingEnumerator::remove();
    }

private:
    std::shared_ptr<FaultPlan> plan_;
};

}  // namespace

bool FaultPlan::nextFails() noexcept {
    ++count_;
    if (fault_.atOperation == 0) {
        return false;
    }
    return fault_.duration == Fault::Duration::once ? count_ == fault_.atOperation
                                                    : count_ >= fault_.atOperation;
}

FaultyFileManager::FaultyFileManager(std::shared_ptr<const FileManager> target, Fault fault)
    : ForwardingFileManager(std::move(target)), plan_(std::make_shared<FaultPlan>(fault)) {}

void FaultyFileManager::count(const fs::path& path) const {
    countOrThrow(*plan_, path);
}

FileExistence FaultyFileManager::fileExists(const fs::path& path) const noexcept {
    return plan_->nextFails() ? FileExistence{} : ForwardingFileManager::fileExists(path);
}

FileAttributes FaultyFileManager::attributes(const fs::path& path) const {
    count(path);
    return ForwardingFileManager::attributes(path);
}

Bytes FaultyFileManager::contents(const fs::path& path) const {
    count(path);
    return ForwardingFileManager::contents(path);
}

void FaultyFileManager::replace(const fs::path& path, BytesView contents) const {
    count(path);
    ForwardingFileManager::replace(path, contents);
}

void FaultyFileManager::copy(const fs::path& from, const fs::path& to) const {
    count(to);
    ForwardingFileManager::copy(from, to);
}

void FaultyFileManager::remove(const fs::path& path) const {
    count(path);
    ForwardingFileManager::remove(path);
}

void FaultyFileManager::createDirectory(const fs::path& path) const {
    count(path);
    ForwardingFileManager::createDirectory(path);
}

std::unique_ptr<DirectoryEnumerator> FaultyFileManager::enumerator(
    const fs::path& directory) const {
    count(directory);
    auto target = ForwardingFileManager::enumerator(directory);
    return target ? std::make_unique<FaultyEnumerator>(std::move(target), plan_) : nullptr;
}

}  // namespace browsersweep::tests

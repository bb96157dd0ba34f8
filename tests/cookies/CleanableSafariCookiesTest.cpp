#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cookies/CleanableSafariCookies.h"

#include "tests/support/BinaryCookieFileBuilder.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using tests::cookieFile;
using tests::cookiePage;
using tests::CookieRecord;
using tests::emptyDictionary;
using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;

class CookieList final : public HTTPCookieStorage {
public:
    std::vector<HTTPCookie> cookies() const override { return cookies_; }
    void setCookie(const HTTPCookie& cookie) override { cookies_.push_back(cookie); }
    void deleteCookie(const HTTPCookie& cookie) override { std::erase(cookies_, cookie); }

private:
    std::vector<HTTPCookie> cookies_;
};

class RecordingLauncher final : public ProcessLauncher {
public:
    explicit RecordingLauncher(std::vector<std::string>& lines) : lines_(&lines) {}
    void runAndWait(const fs::path& executable,
                    std::span<const std::string> arguments) const noexcept override {
        std::string line = executable.native();
        for (const std::string& argument : arguments) {
            line += "|" + argument;
        }
        lines_->push_back(line);
    }

private:
    std::vector<std::string>* lines_;
};

class RecordingLog final : public SystemLog {
public:
    explicit RecordingLog(std::vector<std::string>& lines) : lines_(&lines) {}
    void debug(std::string_view message) const noexcept override { lines_->emplace_back(message); }

private:
    std::vector<std::string>* lines_;
};

class WithoutAttributes final : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    FileAttributes attributes(const fs::path& path) const override {
        throw fs::filesystem_error("no attributes", path,
                                   std::make_error_code(std::errc::io_error));
    }
};

class TellingSize final : public tests::ForwardingFileManager {
public:
    TellingSize(std::shared_ptr<const FileManager> target, std::optional<std::uint64_t> size)
        : ForwardingFileManager(std::move(target)), size_(size) {}
    FileAttributes attributes(const fs::path& path) const override {
        FileAttributes told = ForwardingFileManager::attributes(path);
        told.size = size_;
        return told;
    }

private:
    std::optional<std::uint64_t> size_;
};

class UnableToChange final : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    void replace(const fs::path& path, BytesView /*contents*/) const override { refuse(path); }
    void removeFile(const fs::path& path) const override { refuse(path); }

private:
    static void refuse(const fs::path& path) {
        throw fs::filesystem_error("no change", path,
                                   std::make_error_code(std::errc::permission_denied));
    }
};

std::string text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

CookieRecord createdAt(double seconds) {
    CookieRecord record;
    record.creation = seconds;
    return record;
}

CleanableDataFilter patterns(CleanableDataFilter::Rule rule, const char* pattern) {
    return {rule, {pattern}};
}

CleanableDataFilter since(double seconds) {
    return {std::nullopt, Dates{Dates::Rule::insideRange, dateFromReferenceSeconds(seconds), {}}};
}

class CleanableSafariCookiesTest : public ::testing::Test {
protected:
    CleanableSafariCookiesTest() {
        services_ = SystemServices::current();
        services_.sharedCookieStorage = [this](std::string_view identifier) {
            identifiers_.emplace_back(identifier);
            return storage_;
        };
        services_.processLauncher = std::make_shared<const RecordingLauncher>(processes_);
        services_.systemLog = std::make_shared<const RecordingLog>(log_);
    }

    CleanableSafariCookies item() const { return itemOver(fileManager_); }
    CleanableSafariCookies itemOver(std::shared_ptr<const FileManager> fileManager) const {
        return CleanableSafariCookies(Home(std::move(fileManager)).withServices(services_));
    }

    void fillStorage() {
        for (const char* domain : {"www.EXAMPLE.org", "other.net"}) {
            storage_->setCookie({domain, "n", "/"});
        }
    }
    std::vector<std::string> storageDomains() const {
        std::vector<std::string> domains;
        for (const HTTPCookie& cookie : storage_->cookies()) {
            domains.push_back(cookie.domain);
        }
        return domains;
    }

    fs::path writeFirst(const Bytes& file) const { return folder_.write(first, text(file)); }
    fs::path writeSecond(const Bytes& file) const { return folder_.write(second, text(file)); }

    static Bytes oldAndNew() {
        return cookieFile({cookiePage({createdAt(100).data(), createdAt(200).data()})},
                          emptyDictionary());
    }
    static Bytes onlyOld() {
        return cookieFile({cookiePage({createdAt(100).data()})}, emptyDictionary());
    }
    std::string urlOf(const fs::path& path) const { return "file://" + path.native(); }

    static constexpr const char* first = "Library/Cookies/Cookies.binarycookies";
    static constexpr const char* second =
        "Library/Containers/com.apple.Safari/Data/Library/Cookies/Cookies.binarycookies";

    tests::TemporaryFolder folder_;
    std::shared_ptr<const FileManager> fileManager_ =
        tests::GuardedFileManager::forFixture(folder_);
    std::shared_ptr<HTTPCookieStorage> storage_ = std::make_shared<CookieList>();
    std::vector<std::string> identifiers_;
    std::vector<std::string> processes_;
    std::vector<std::string> log_;
    SystemServices services_;
};

}  // namespace

TEST_F(CleanableSafariCookiesTest, needsSafariClosedAndTakesTheStorageOfCookies) {
    EXPECT_TRUE(item().requiresClosedBrowserToClean());
    EXPECT_EQ(identifiers_, std::vector<std::string>{"Cookies"});
}

TEST_F(CleanableSafariCookiesTest, withoutFilesIsEmptyAndCleansTheStorageAllTheSame) {
    fillStorage();
    EXPECT_EQ(item().size(), CleanableDataSize::zero);
    item().clean();
    EXPECT_EQ(processes_, (std::vector<std::string>{"/bin/sh|-c|killall -KILL nsurlstoraged",
                                                    "/bin/sh|-c|killall -KILL nsurlsessiond"}));
    EXPECT_EQ(storageDomains(), std::vector<std::string>{});
    EXPECT_EQ(log_, std::vector<std::string>{});
}

TEST_F(CleanableSafariCookiesTest, addsUpBothFiles) {
    writeFirst(oldAndNew());
    writeSecond(onlyOld());
    const auto bytes = static_cast<std::int64_t>(oldAndNew().size() + onlyOld().size());
    EXPECT_EQ(item().size(), (CleanableDataSize{3, bytes}));
}

TEST_F(CleanableSafariCookiesTest, countsOnlyTheBytesThatFilteringWouldSave) {
    writeFirst(oldAndNew());
    const auto bytes = static_cast<std::int64_t>(oldAndNew().size() - onlyOld().size());
    const std::vector filters{since(150)};
    EXPECT_EQ(item().size(filters), (CleanableDataSize{1, bytes}));
    EXPECT_EQ(item().cleanAndReturnSize(filters), (CleanableDataSize{1, bytes}));
}

TEST_F(CleanableSafariCookiesTest, stopsBetweenTheFilesWhenItIsTold) {
    const fs::path one = writeFirst(oldAndNew());
    const fs::path two = writeSecond(onlyOld());
    fillStorage();
    const auto control = std::make_shared<OperationControl>(
        [](const OperationProgress& done) { return done.files >= 1; });
    const CleanableSafariCookies controlled(
        Home::at(folder_.path(), control).withServices(services_));
    EXPECT_EQ(controlled.size().itemCount, CleanableDataSize::Measurement(3));
    EXPECT_EQ(control->progress().rows, 3U);
    EXPECT_THROW(controlled.clean(), OperationCancelled);
    EXPECT_FALSE(fs::exists(one));
    EXPECT_TRUE(fs::exists(two));
    EXPECT_EQ(storageDomains().size(), 2U);
    EXPECT_THROW(controlled.size(), OperationCancelled);
}

TEST_F(CleanableSafariCookiesTest, aFileBehindALinkBelowTheLibraryIsNeitherDeletedNorRewritten) {
    writeFirst(oldAndNew());
    fs::rename(folder_ / "Library/Cookies", folder_ / "precious");
    fs::create_directory_symlink(folder_ / "precious", folder_ / "Library/Cookies");
    const auto before = folder_.snapshot();
    item().clean();
    item().clean(std::vector{since(150)});
    EXPECT_EQ(log_.size(), 2U);
    EXPECT_EQ(folder_.snapshot(), before);
}

TEST_F(CleanableSafariCookiesTest, deletesBothFilesWithoutFilters) {
    const fs::path one = writeFirst(oldAndNew());
    const fs::path two = writeSecond({'b', 'a', 'd'});
    item().clean();
    EXPECT_FALSE(fs::exists(one));
    EXPECT_FALSE(fs::exists(two));
}

TEST_F(CleanableSafariCookiesTest, rewritesFilesByDateAndKeepsTheirMode) {
    const fs::path file = writeFirst(oldAndNew());
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fillStorage();
    item().clean(std::vector{since(150)});
    EXPECT_EQ(tests::readFile(file), text(onlyOld()));
    EXPECT_EQ(fs::status(file).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(storageDomains(), std::vector<std::string>{});
}

TEST_F(CleanableSafariCookiesTest, leavesFileCookiesToExcludeFiltersAndSparesHitDomains) {
    const fs::path file = writeFirst(oldAndNew());
    fillStorage();
    item().clean(std::vector{patterns(CleanableDataFilter::Rule::exclude, "example")});
    EXPECT_EQ(tests::readFile(file), text(oldAndNew()));
    EXPECT_EQ(storageDomains(), std::vector<std::string>{"www.EXAMPLE.org"});
}

TEST_F(CleanableSafariCookiesTest, removesEverythingUnderAnIncludeFilter) {
    const fs::path file = writeFirst(oldAndNew());
    fillStorage();
    item().clean(std::vector{patterns(CleanableDataFilter::Rule::include, "example")});
    EXPECT_EQ(tests::readFile(file), text(cookieFile({}, emptyDictionary())));
    EXPECT_EQ(storageDomains(), std::vector<std::string>{});
}

TEST_F(CleanableSafariCookiesTest, letsTheLastFilterThatHitsADomainDecide) {
    const auto exclude = patterns(CleanableDataFilter::Rule::exclude, "example");
    const auto include = patterns(CleanableDataFilter::Rule::include, "EXAMPLE");
    fillStorage();
    item().clean(std::vector{include, exclude});
    EXPECT_EQ(storageDomains(), std::vector<std::string>{"www.EXAMPLE.org"});
    item().clean(std::vector{exclude, include});
    EXPECT_EQ(storageDomains(), std::vector<std::string>{});
}

TEST_F(CleanableSafariCookiesTest, leavesAnUndecodableFileAndGoesOnWithTheNext) {
    const fs::path bad = writeFirst({'b', 'a', 'd'});
    const fs::path good = writeSecond(oldAndNew());
    item().clean(std::vector{since(150)});
    EXPECT_EQ(tests::readFile(bad), "bad");
    EXPECT_EQ(tests::readFile(good), text(onlyOld()));
    EXPECT_EQ(log_, std::vector<std::string>{"Could not clean cookies at " + urlOf(bad) +
                                             ": Magic number is missing or incorrect"});
}

TEST_F(CleanableSafariCookiesTest, logsAFileThatItCannotReadAndCountsNothing) {
    const fs::path bad = writeFirst({'b', 'a', 'd'});
    EXPECT_EQ(item().size(), CleanableDataSize::zero);
    EXPECT_EQ(log_, std::vector<std::string>{"Could not read cookies at " + urlOf(bad) +
                                             ": Magic number is missing or incorrect"});
}

TEST_F(CleanableSafariCookiesTest, isApproximateWithoutTheSizeOfTheFile) {
    writeFirst(oldAndNew());
    fileManager_ = std::make_shared<const WithoutAttributes>(fileManager_);
    EXPECT_EQ(item().size(), (CleanableDataSize{2, {0, true}}));
}

TEST_F(CleanableSafariCookiesTest, isApproximateWhereTheSizeIsAbsentOrBeyond63Bits) {
    writeFirst(oldAndNew());
    const auto sizeTold = [this](std::optional<std::uint64_t> size) {
        return itemOver(std::make_shared<const TellingSize>(fileManager_, size)).size();
    };
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(sizeTold(std::nullopt), (CleanableDataSize{2, {0, true}}));
    EXPECT_EQ(sizeTold(std::uint64_t{largest} + 1), (CleanableDataSize{2, {0, true}}));
    EXPECT_EQ(sizeTold(std::uint64_t{largest}), (CleanableDataSize{2, largest}));
}

TEST_F(CleanableSafariCookiesTest, countsCookiesThatItMeasuresOrTakesOutAndFilesThatItDeletes) {
    const auto control = std::make_shared<OperationControl>();
    const CleanableSafariCookies counted(Home::at(folder_.path(), control).withServices(services_));
    writeFirst(oldAndNew());
    counted.size();
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, 2}));
    control->restart({});
    counted.clean(std::vector{since(150)});
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, 1}));
    control->restart({});
    counted.clean();
    EXPECT_EQ(control->progress(), (OperationProgress{1, 0, 0}));
}

TEST_F(CleanableSafariCookiesTest, stopsBetweenTheCookiesOfTheStorage) {
    fillStorage();
    const auto control = std::make_shared<OperationControl>(
        [this](const OperationProgress& /*done*/) { return storageDomains().size() < 2; });
    const CleanableSafariCookies controlled(
        Home::at(folder_.path(), control).withServices(services_));
    EXPECT_THROW(controlled.clean(), OperationCancelled);
    EXPECT_EQ(storageDomains().size(), 1U);
}

TEST_F(CleanableSafariCookiesTest, datesThatWereTakenAwaySelectNothing) {
    writeFirst(oldAndNew());
    CleanableDataFilter filter = since(1000);
    filter.datesData.reset();
    EXPECT_EQ(item().size(std::vector{filter}).itemCount, CleanableDataSize::Measurement(2));
}

TEST_F(CleanableSafariCookiesTest, thePathInTheLogIsAURLWithEscapes) {
    const fs::path home = folder_.makeFolder("\xC3\xAF? \x1F");
    folder_.write(fs::path("\xC3\xAF? \x1F") / first, "bad");
    CleanableSafariCookies(
        Home(std::make_shared<const tests::GuardedFileManager>(home)).withServices(services_))
        .size();
    EXPECT_EQ(log_, std::vector<std::string>{"Could not read cookies at " + urlOf(folder_.path()) +
                                             "/%C3%AF%3F%20%1F/" + first +
                                             ": Magic number is missing or incorrect"});
}

TEST_F(CleanableSafariCookiesTest, logsWhatCannotBeChangedAndStillCleansTheStorage) {
    const fs::path file = writeFirst(oldAndNew());
    fileManager_ = std::make_shared<const UnableToChange>(fileManager_);
    for (const std::vector<CleanableDataFilter>& filters :
         {std::vector<CleanableDataFilter>{}, std::vector{since(150)}}) {
        fillStorage();
        log_.clear();
        item().clean(filters);
        ASSERT_EQ(log_.size(), 1U);
        EXPECT_TRUE(log_[0].starts_with("Could not clean cookies at " + urlOf(file) + ": "));
        EXPECT_EQ(storageDomains(), std::vector<std::string>{});
        EXPECT_EQ(tests::readFile(file), text(oldAndNew()));
    }
}

TEST_F(CleanableSafariCookiesTest, takesNoDirectoryForAFile) {
    folder_.makeFolder(first);
    EXPECT_EQ(item().size(), CleanableDataSize::zero);
    item().clean();
    EXPECT_TRUE(fs::exists(folder_ / first));
}

}  // namespace browsersweep

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"

#include "tests/support/DateFilter.h"
#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/SystemUnderTest.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using tests::dates;
using tests::GuardedFileManager;
using tests::inside;
using tests::TemporaryFolder;
using Lines = std::vector<std::string>;
using Rule = CleanableDataFilter::Rule;

CleanableDataFilter including(const std::string& pattern) {
    return {Rule::include, {pattern}};
}
CleanableDataFilter excluding(const std::string& pattern) {
    return {Rule::exclude, {pattern}};
}

/** Tells other creation dates than the files', which no test can set. */
class DatedFileManager : public tests::ForwardingFileManager {
public:
    using Dates = std::map<std::string, double, std::less<>>;

    DatedFileManager(std::shared_ptr<const FileManager> target, Dates dates)
        : ForwardingFileManager(std::move(target)), dates_(std::move(dates)) {}

    std::unique_ptr<DirectoryEnumerator> enumerator(const fs::path& directory) const override {
        return std::make_unique<Enumerator>(ForwardingFileManager::enumerator(directory), dates_);
    }

private:
    class Enumerator : public tests::ForwardingEnumerator {
    public:
        Enumerator(std::unique_ptr<DirectoryEnumerator> target, const Dates& dates)
            : ForwardingEnumerator(std::move(target)), dates_(&dates) {}

        std::optional<Date> creationDate() noexcept override {
            const auto found = dates_->find(name());
            return found == dates_->end() ? std::nullopt
                                          : std::optional(dateFromReferenceSeconds(found->second));
        }

    private:
        const Dates* dates_;
    };

    Dates dates_;
};

class CleanableDirectoryTest : public testing::Test {
protected:
    void SetUp() override {
        folder.write("cache/a.txt", "0123456789");
        folder.write("cache/sub/b.txt", "01234567890123456789");
    }

    CleanableDirectory directory(std::vector<CleanableDataFilter> filters = {}) const {
        return {folder / "cache", true, std::move(filters), fileManager};
    }

    CleanableDirectory dated(const DatedFileManager::Dates& dates) const {
        return {folder / "cache", true, {}, std::make_shared<DatedFileManager>(fileManager, dates)};
    }

    TemporaryFolder folder;
    std::shared_ptr<const FileManager> fileManager = GuardedFileManager::forFixture(folder);
};

using Filters = std::vector<CleanableDataFilter>;

TEST_F(CleanableDirectoryTest, countsFilesAtAnyDepthAndCleanKeepsTheFolders) {
    EXPECT_EQ(directory().size(), (CleanableDataSize{2, 30}));
    directory().clean();
    EXPECT_EQ(folder.snapshot(), (Lines{"cache/", "cache/sub/"}));
    EXPECT_EQ(directory().size(), CleanableDataSize::zero);
}

TEST_F(CleanableDirectoryTest, sizingChangesNothing) {
    const auto before = folder.snapshot();
    directory().size(Filters{including("a"), dates(inside, 0, 1)});
    EXPECT_EQ(folder.snapshot(), before);
}

TEST_F(CleanableDirectoryTest, anIncludedPatternThatDoesNotOccurIsNoOpinion) {
    EXPECT_EQ(directory().size(Filters{including("a")}), (CleanableDataSize{2, 30}));
}

TEST_F(CleanableDirectoryTest, anExcludedPatternThatOccursRejects) {
    EXPECT_EQ(directory().size(Filters{excluding("b")}), (CleanableDataSize{1, 10}));
    directory().clean(Filters{excluding("b")});
    EXPECT_EQ(folder.snapshot(),
              (Lines{"cache/", "cache/sub/", "cache/sub/b.txt: 01234567890123456789"}));
}

TEST_F(CleanableDirectoryTest, theLastOpinionWins) {
    const CleanableDataSize both{2, 30};
    EXPECT_EQ(directory().size(Filters{excluding("a"), including("a")}), both);
    EXPECT_EQ(directory().size(Filters{including("a"), excluding("a")}),
              (CleanableDataSize{1, 20}));
    EXPECT_EQ(directory().size(Filters{excluding("a"), including("nowhere")}),
              (CleanableDataSize{1, 20}));
}

TEST_F(CleanableDirectoryTest, patternsAreCaseSensitiveAndMatchTheLastPathComponentAlone) {
    EXPECT_EQ(directory().size(Filters{excluding("A")}), (CleanableDataSize{2, 30}));
    EXPECT_EQ(directory().size(Filters{excluding("sub")}), (CleanableDataSize{2, 30}));
    EXPECT_EQ(directory().size(Filters{excluding("cache")}), (CleanableDataSize{2, 30}));
}

TEST_F(CleanableDirectoryTest, theEmptyPatternOccursInEveryName) {
    EXPECT_EQ(directory().size(Filters{excluding("")}), CleanableDataSize::zero);
}

TEST_F(CleanableDirectoryTest, ownFiltersAndThoseOfTheCallMustBothAccept) {
    EXPECT_EQ(directory({excluding("a")}).size(Filters{excluding("b")}), CleanableDataSize::zero);
    // Were the lists one, the later include would take back the own exclusion.
    EXPECT_EQ(directory({excluding("a")}).size(Filters{including("a")}),
              (CleanableDataSize{1, 20}));
}

TEST_F(CleanableDirectoryTest, datesAcceptAndRejectByTheCreationDate) {
    const auto item = dated({{"a.txt", 100}, {"b.txt", 200}});
    EXPECT_EQ(item.size(Filters{dates(inside, 50, 150)}), (CleanableDataSize{1, 10}));
    EXPECT_EQ(item.size(Filters{dates(inside, 200, 200)}), (CleanableDataSize{1, 20}));
    EXPECT_EQ(item.size(Filters{dates(inside, 300, 400)}), CleanableDataSize::zero);
}

TEST_F(CleanableDirectoryTest, aFileWhoseDateCannotBeReadIsJudgedByPatternsAlone) {
    const auto item = dated({{"a.txt", 100}});
    EXPECT_EQ(item.size(Filters{dates(inside, 0, 1)}), (CleanableDataSize{1, 20}));
    EXPECT_EQ(item.size(Filters{dates(inside, 0, 1), excluding("b")}), CleanableDataSize::zero);
}

TEST_F(CleanableDirectoryTest, aFilterWithBothPartsAcceptsOnlyIfBothDo) {
    const auto item = dated({{"a.txt", 100}, {"b.txt", 200}});
    const auto filter = [](Rule rule, const std::string& pattern) {
        CleanableDataFilter both(rule, {pattern});
        both.datesData = dates(inside, 50, 150).datesData;
        return Filters{both};
    };
    EXPECT_EQ(item.size(filter(Rule::include, "a")), (CleanableDataSize{1, 10}));
    EXPECT_EQ(item.size(filter(Rule::include, "b")), (CleanableDataSize{1, 10}));
    EXPECT_EQ(item.size(filter(Rule::exclude, "a")), CleanableDataSize::zero);
}

TEST_F(CleanableDirectoryTest, realFilesHaveACreationDate) {
    if (tests::isEmulated("birth=no")) {
        GTEST_SKIP() << "the file system keeps no birth times";
    }
    const double now = referenceSeconds(ReferenceClock::now());
    constexpr double year = 365.0 * 86400;
    EXPECT_EQ(directory().size(Filters{dates(inside, now - year, now + year)}),
              (CleanableDataSize{2, 30}));
    EXPECT_EQ(directory().size(Filters{dates(inside, 0, 1)}), CleanableDataSize::zero);
}

TEST_F(CleanableDirectoryTest, aRegularFileInItsPlaceIsZeroAndNotDeleted) {
    const CleanableDirectory item(folder / "cache/a.txt", true, {}, fileManager);
    EXPECT_EQ(item.size(), CleanableDataSize::zero);
    item.clean();
    EXPECT_TRUE(fs::exists(folder / "cache/a.txt"));
}

TEST_F(CleanableDirectoryTest, aMissingDirectoryIsZeroAndCleansNothing) {
    const CleanableDirectory item(folder / "gone", false, {}, fileManager);
    EXPECT_EQ(item.size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(item.clean());
    EXPECT_FALSE(item.requiresClosedBrowserToClean());
    EXPECT_FALSE(fs::exists(folder / "gone"));
}

TEST_F(CleanableDirectoryTest, linksBelowAreFilesOfTheirOwnAndNeverFollowed) {
    folder.write("precious/keep.txt", "precious");
    fs::create_directory_symlink(folder / "precious", folder / "cache/link");
    fs::create_symlink(folder / "precious/keep.txt", folder / "cache/sub/link");
    const auto linkBytes = static_cast<std::int64_t>(
        (folder / "precious").string().size() + (folder / "precious/keep.txt").string().size());
    EXPECT_EQ(directory().size(), (CleanableDataSize{4, 30 + linkBytes}));
    directory().clean();
    EXPECT_EQ(folder.snapshot(),
              (Lines{"cache/", "cache/sub/", "precious/", "precious/keep.txt: precious"}));
}

TEST_F(CleanableDirectoryTest, aRootThatIsALinkIsNotEnteredAndTheControlIsTold) {
    fs::create_directory_symlink(folder / "cache", folder / "elsewhere");
    const auto control = std::make_shared<OperationControl>();
    const CleanableDirectory item(folder / "elsewhere", true, {},
                                  FileManager::forHome(folder.path(), control));
    EXPECT_EQ(item.size(), CleanableDataSize::zero);
    item.clean();
    EXPECT_EQ(directory().size(), (CleanableDataSize{2, 30}));
    EXPECT_EQ(control->takeLeftOut(),
              (std::vector<LeftOutFolder>{{folder / "elsewhere", "it is a link"}}));
}

TEST_F(CleanableDirectoryTest, hiddenFilesAndPackagesCount) {
    folder.write("cache/.hidden", "12");
    folder.write("cache/Some.app/Contents/file", "345");
    EXPECT_EQ(directory().size(), (CleanableDataSize{4, 35}));
}

TEST_F(CleanableDirectoryTest, namesAreJudgedBeforeItIsAskedWhatTheyStandFor) {
    const auto faulty = std::make_shared<tests::FaultyFileManager>(fileManager, tests::Fault{});
    const CleanableDirectory item(folder / "cache", true, {excluding("")}, faulty);
    item.clean();
    // One for the folder, one to begin, four to go from entry to entry: nothing about them.
    EXPECT_EQ(faulty->operationCount(), 6U);
}

/** Does not know what the entries are. */
class KindlessFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    std::unique_ptr<DirectoryEnumerator> enumerator(const fs::path& directory) const override {
        return std::make_unique<Enumerator>(ForwardingFileManager::enumerator(directory));
    }

private:
    class Enumerator : public tests::ForwardingEnumerator {
    public:
        using ForwardingEnumerator::ForwardingEnumerator;
        std::optional<bool> isDirectory() override { return std::nullopt; }
    };
};

TEST_F(CleanableDirectoryTest, whatHasASizeCountsAndWhatHasNoKindIsNotDeleted) {
    const CleanableDirectory item(folder / "cache", true, {},
                                  std::make_shared<KindlessFileManager>(fileManager));
    const auto before = folder.snapshot();
    EXPECT_EQ(item.size(), (CleanableDataSize{2, 30}));
    item.clean();
    EXPECT_EQ(folder.snapshot(), before);
}

/** Stops at the n-th question. */
std::shared_ptr<OperationControl> stoppingAt(int question) {
    return std::make_shared<OperationControl>(
        [question](const OperationProgress& /*done*/) mutable { return --question < 0; });
}

TEST_F(CleanableDirectoryTest, aSizeThatIsToldToStopSaysWhatItCounted) {
    for (int question = 0; question < 4; ++question) {
        const CleanableDirectory item(folder / "cache", true, {},
                                      FileManager::forHome(folder.path(), stoppingAt(question)));
        EXPECT_THROW(item.size(), OperationCancelled);
    }
    const auto control = stoppingAt(4);
    const CleanableDirectory item(folder / "cache", true, {},
                                  FileManager::forHome(folder.path(), control));
    EXPECT_EQ(item.size(), (CleanableDataSize{2, 30}));
    EXPECT_EQ(control->progress(), (OperationProgress{2, 30, 0}));
}

TEST_F(CleanableDirectoryTest, aCleanThatIsToldToStopDeletesNothingMoreAndCountsWhatWent) {
    constexpr int count = 1000;
    constexpr int stop = 400;
    for (int number = 0; number < count; ++number) {
        folder.write("many/" + std::to_string(number), "");
    }
    const auto control = stoppingAt(stop + 1);  // the first question comes before the first file
    const CleanableDirectory item(folder / "many", true, {},
                                  FileManager::forHome(folder.path(), control));
    try {
        item.clean();
        FAIL() << "it was not stopped";
    } catch (const OperationCancelled& cancelled) {
        EXPECT_EQ(cancelled.progress().files, static_cast<std::uint64_t>(stop));
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "many"), fs::directory_iterator()),
              count - stop);
    EXPECT_THROW(item.size(), OperationCancelled);  // the answer is kept
}

TEST_F(CleanableDirectoryTest, aCleanCountsFilesAlone) {
    const auto control = std::make_shared<OperationControl>();
    CleanableDirectory(folder / "cache", true, {}, FileManager::forHome(folder.path(), control))
        .clean();
    EXPECT_EQ(control->progress(), (OperationProgress{2, 0, 0}));
}

TEST_F(CleanableDirectoryTest, itsOneLocationIsTheFolder) {
    const std::vector<CleanableDataLocation> expected{
        {CleanableDataLocation::Kind::folder, folder / "cache"}};
    EXPECT_EQ(directory().locations(), expected);
}

/** Runs an operation with the n-th call failing, for every n until nothing fails any more. */
template <typename Operation>
std::size_t forEveryFailure(const std::shared_ptr<const FileManager>& target, Operation operation) {
    for (std::size_t number = 1;; ++number) {
        const auto faulty =
            std::make_shared<tests::FaultyFileManager>(target, tests::Fault{number});
        operation(faulty);
        if (faulty->operationCount() < number) {
            return number - 1;
        }
    }
}

TEST_F(CleanableDirectoryTest, sizingEitherFailsWithTheSystemsErrorOrIsExactOrFindsNothing) {
    const auto count = forEveryFailure(fileManager, [&](const auto& faulty) {
        const CleanableDirectory item(folder / "cache", true, {}, faulty);
        try {
            const auto size = item.size();
            EXPECT_TRUE(size == (CleanableDataSize{2, 30}) || size == CleanableDataSize::zero);
        } catch (const fs::filesystem_error& error) {
            EXPECT_EQ(error.code(), std::errc::io_error);
        }
    });
    EXPECT_GE(count, 8U);
}

TEST_F(CleanableDirectoryTest, filesAreThoseThatAreSizedWithTheirPaths) {
    const std::vector all{SelectedFile{folder / "cache/a.txt", 10},
                          SelectedFile{folder / "cache/sub/b.txt", 20}};
    EXPECT_EQ(directory().files({}), all);
    EXPECT_EQ(directory().files(std::vector{excluding("b")}), std::vector{all.front()});
}

TEST_F(CleanableDirectoryTest, filesAreCountedAsTheyAreFound) {
    const auto control = std::make_shared<OperationControl>();
    const CleanableDirectory item(folder / "cache", true, {},
                                  FileManager::forHome(folder.path(), control));
    EXPECT_EQ(item.files({}).size(), 2U);
    EXPECT_EQ(control->progress(), (OperationProgress{2, 30, 0}));
    EXPECT_EQ(SelectedFile(), (SelectedFile{fs::path(), 0}));
}

TEST_F(CleanableDirectoryTest, itsOnePartTakesNoFileWhoseDateIsNotKnown) {
    const CleanableDirectory item = dated({{"a.txt", 5}});
    const std::vector filters{dates(inside, 0, 10)};
    EXPECT_EQ(item.size(filters), (CleanableDataSize{2, 30}));
    const auto parts = item.parts();
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts.front().sight, FilterSight({false, false, true}));
    EXPECT_EQ(parts.front().data->size(filters), (CleanableDataSize{1, 10}));
    EXPECT_EQ(parts.front().data->size(), (CleanableDataSize{2, 30}));
}

/** Every deletion fails. */
class UndeletingFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    std::unique_ptr<DirectoryEnumerator> enumerator(const fs::path& directory) const override {
        return std::make_unique<Enumerator>(ForwardingFileManager::enumerator(directory));
    }

private:
    class Enumerator : public tests::ForwardingEnumerator {
    public:
        using ForwardingEnumerator::ForwardingEnumerator;
        void remove() override {
            throw fs::filesystem_error("refused",
                                       std::make_error_code(std::errc::read_only_file_system));
        }
    };
};

TEST_F(CleanableDirectoryTest, aDeletionThatFailsEndsTheCleanWithItsError) {
    const auto before = folder.snapshot();
    const CleanableDirectory item(folder / "cache", true, {},
                                  std::make_shared<UndeletingFileManager>(fileManager));
    try {
        item.clean();
        FAIL() << "no error";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::read_only_file_system);
    }
    EXPECT_EQ(folder.snapshot(), before);
}

TEST_F(CleanableDirectoryTest, whateverFailsCleaningKeepsTheFoldersAndTheSystemsError) {
    forEveryFailure(fileManager, [&](const auto& faulty) {
        folder.write("cache/a.txt", "a");
        folder.write("cache/sub/b.txt", "b");
        const CleanableDirectory item(folder / "cache", true, {}, faulty);
        try {
            item.clean();
        } catch (const fs::filesystem_error& error) {
            EXPECT_EQ(error.code(), std::errc::io_error);
        }
        EXPECT_TRUE(fs::is_directory(folder / "cache/sub"));
    });
}

}  // namespace
}  // namespace browsersweep

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>

#include "browsersweep/catalogue/BrowserCleaner.h"

#include "tests/support/FaultyFileManager.h"
#include "tests/support/SampleHome.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::FailedOperation;
using tests::Fault;
using tests::FaultyFileManager;
using tests::SampleHome;

/** Something that a host does with a browser. */
struct Operation {
    std::string_view name;
    bool changesFiles;
    std::function<CleanableDataSize(const BrowserCleaner&)> run;
};

/** For the framework, which would print the bytes of the whole, those between its members too. */
void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.name;
}

bool everyProfile(const BrowserProfile& /*profile*/) {
    return true;
}

std::vector<CleanableDataFilter> filters() {
    const CleanableDataFilter::Dates dates{CleanableDataFilter::Dates::Rule::insideRange,
                                           dateFromReferenceSeconds(0), std::nullopt};
    return {{CleanableDataFilter::Rule::include, {"one"}}, {std::nullopt, dates}};
}

/** How many of something there are, as a size. */
CleanableDataSize countOf(std::size_t count) {
    return {static_cast<std::int64_t>(count), 0};
}

std::size_t subscriptionCount(const BrowserCleaner& cleaner) {
    std::size_t count = 0;
    for (const auto& profile : cleaner.profileReader().profiles()) {
        count += profile->notificationSubscriptions().size();
    }
    return count;
}

CleanableDataMap dataOf(const BrowserCleaner& cleaner) {
    return cleaner.cleanableData(everyProfile);
}

CleanableDataSize cookieSize(const BrowserCleaner& cleaner) {
    const CleanableDataMap data = dataOf(cleaner);
    const auto* cookies = data.find(CleanableDataCategory::httpCookies);
    return cookies == nullptr ? CleanableDataSize::zero : cookies->size();
}

CleanableDataSize cleanCookies(const BrowserCleaner& cleaner) {
    const CleanableDataMap data = dataOf(cleaner);
    if (const auto* cookies = data.find(CleanableDataCategory::httpCookies)) {
        cookies->clean(filters());
    }
    return CleanableDataSize::zero;
}

CleanableDataSize clean(const BrowserCleaner& cleaner, CleanableDataFilters chosen) {
    dataOf(cleaner).clean(chosen);
    return CleanableDataSize::zero;
}

using Cleaner = BrowserCleaner;

// clang-format off
const std::vector<Operation> operations{
    {"profiles",         false, [](const Cleaner& c) { return countOf(c.profileReader().profiles().size()); }},
    {"size",             false, [](const Cleaner& c) { return dataOf(c).size(); }},
    {"size by filters",  false, [](const Cleaner& c) { return dataOf(c).size(filters()); }},
    {"bookmarks",        false, [](const Cleaner& c) { return countOf(c.bookmarks(everyProfile).size()); }},
    {"notifications",    false, [](const Cleaner& c) { return countOf(subscriptionCount(c)); }},
    {"cookie size",      false, cookieSize},
    {"clean",            true,  [](const Cleaner& c) { return clean(c, {}); }},
    {"clean by filters", true,  [](const Cleaner& c) { return clean(c, filters()); }},
    {"cookie clean",     true,  cleanCookies},
    {"clean and return", true,  [](const Cleaner& c) { return dataOf(c).cleanAndReturnSize({}); }},
};
// clang-format on

bool isTemporary(const FailedOperation& failed) {
    return failed.path.string().find("/tmp/browsersweep-") != std::string::npos;
}

bool isCookieFile(const FailedOperation& failed) {
    return failed.path.filename() == "Cookies.binarycookies";
}

/** Whether the operation that it is part of has to fail with the same error. */
bool surfaces(const FailedOperation& failed) {
    if (failed.function == "fileExists" || failed.function == "creationDate") {
        return false;  // questions that cannot fail: nothing there, no date
    }
    if (failed.function.starts_with("remove") && isTemporary(failed)) {
        return false;  // the result is there already
    }
    // Cookie files that fail are logged; permissions that cannot be read allow nobody.
    return !isCookieFile(failed) && failed.path.filename() != "Permissions.plist";
}

/** A failure of which something stays: the empty folder of a copy, a copy that cannot be removed.
 */
bool leavesFolder(const FailedOperation& failed) {
    return isTemporary(failed) && failed.function != "createDirectory";
}

/** How many of the first descriptors are open: one call of the system asks for all of them. */
std::size_t openDescriptors() {
    constexpr std::size_t beyondAllInUse = 256;
    std::array<pollfd, beyondAllInUse> asked{};
    for (std::size_t index = 0; index < asked.size(); ++index) {
        asked[index].fd = static_cast<int>(index);
    }
    EXPECT_GE(::poll(asked.data(), asked.size(), 0), 0);
    const auto closed = std::count_if(asked.begin(), asked.end(), [](const pollfd& each) {
        return (each.revents & POLLNVAL) != 0;
    });
    return asked.size() - static_cast<std::size_t>(closed);
}

struct Outcome {
    std::optional<CleanableDataSize> size;
    std::error_code error;
};

Outcome outcomeOf(const Operation& operation, const BrowserCleaner& cleaner) {
    try {
        return {operation.run(cleaner), {}};
    } catch (const fs::filesystem_error& error) {
        return {std::nullopt, error.code()};
    }
}

/** Fails one operation after the other of what a host does with one browser. */
class Injection {
public:
    Injection(const SampleHome& home, Browser browser, std::errc error, Fault::Duration duration)
        : home_(home), browser_(browser), error_(error), duration_(duration) {}

    /** Returns how many runs there were. */
    std::size_t failEveryStepOf(const Operation& operation) const {
        const Outcome whole = undisturbed(operation);
        EXPECT_TRUE(whole.size.has_value());
        for (std::size_t step = 1;; ++step) {
            SCOPED_TRACE(std::string(operation.name) + ", step " + std::to_string(step) + " of " +
                         std::string(rawValue(browser_)));
            if (!failStep(operation, step, whole) || testing::Test::HasFatalFailure()) {
                return step;
            }
        }
    }

private:
    Outcome undisturbed(const Operation& operation) const {
        const Outcome outcome =
            outcomeOf(operation, *SampleHome::cleaner(browser_, home_.fileManager()));
        home_.restore();
        return outcome;
    }

    bool failStep(const Operation& operation, std::size_t step, const Outcome& whole) const {
        const std::size_t descriptors = openDescriptors();
        const auto manager = std::make_shared<FaultyFileManager>(home_.fileManager(),
                                                                 Fault{step, error_, duration_});
        const Outcome outcome = outcomeOf(operation, *SampleHome::cleaner(browser_, manager));
        EXPECT_EQ(openDescriptors(), descriptors);
        checkOutcome(outcome, manager->failed(), whole);
        checkTemporaryFolder(manager->failed());
        const std::vector<std::string> changed = home_.changes();
        EXPECT_EQ(operation.changesFiles ? home_.harm(changed) : changed,
                  std::vector<std::string>());
        home_.restore(changed);
        return !manager->failed().empty();
    }

    void checkOutcome(const Outcome& outcome, const std::vector<FailedOperation>& failed,
                      const Outcome& whole) const {
        const bool mustFail = std::any_of(failed.begin(), failed.end(), surfaces);
        EXPECT_EQ(outcome.error, mustFail ? std::make_error_code(error_) : std::error_code());
        if (outcome.size) {
            EXPECT_LE(outcome.size->itemCount.value, whole.size->itemCount.value);
        }
        if (failed.empty()) {
            EXPECT_EQ(outcome.size, whole.size);
        }
    }

    void checkTemporaryFolder(const std::vector<FailedOperation>& failed) const {
        const bool mayLeave = std::any_of(failed.begin(), failed.end(), leavesFolder);
        const tests::Files left = tests::filesBelow(home_.temporaryFolder());
        const bool couldRemove = std::none_of(failed.begin(), failed.end(), [](const auto& one) {
            return one.function.starts_with("remove") && isTemporary(one);
        });
        for (const auto& [name, contents] : left) {
            EXPECT_TRUE(mayLeave) << name;
            EXPECT_TRUE(!couldRemove || name.back() == '/') << name << " stays";
        }
    }

    const SampleHome& home_;
    Browser browser_;
    std::errc error_;
    Fault::Duration duration_;
};

constexpr std::array errors{std::errc::io_error, std::errc::permission_denied,
                            std::errc::no_space_on_device, std::errc::too_many_files_open,
                            std::errc::no_such_file_or_directory};

/** One of each family, which share all their code with the others of it. */
constexpr std::array families{Browser::chromium, Browser::firefox, Browser::safari};

bool isOfEveryFamily(const Operation& operation) {
    return operation.name == "size" || operation.name == "clean";
}

class FileFaultsOf : public testing::TestWithParam<Browser> {};

TEST_P(FileFaultsOf, aFailingStepGivesItsErrorAndHarmsNothing) {
    const std::array only{GetParam()};
    const SampleHome home(only);
    const Injection injection(home, GetParam(), std::errc::io_error, Fault::Duration::once);
    for (const Operation& operation : operations) {
        if (isOfEveryFamily(operation)) {
            EXPECT_GT(injection.failEveryStepOf(operation), 20U);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, FileFaultsOf, testing::ValuesIn(allBrowsers),
                         [](const auto& row) { return std::string(rawValue(row.param)); });

/** What is put together of others, each of which meets every error, meets one. */
std::span<const std::errc> errorsFor(const Operation& operation) {
    return std::span(errors).first(operation.name == "clean and return" ? 1 : errors.size());
}

class FileFaultsOfOperation : public testing::TestWithParam<Operation> {};

TEST_P(FileFaultsOfOperation, everyErrorAtEveryStepIsPassedOnAndHarmsNothing) {
    std::size_t runs = 0;
    for (const Browser browser : families) {
        const std::array only{browser};
        const SampleHome home(only);
        for (const std::errc error : errorsFor(GetParam())) {
            for (const auto duration : {Fault::Duration::once, Fault::Duration::fromThenOn}) {
                runs += Injection(home, browser, error, duration).failEveryStepOf(GetParam());
            }
        }
    }
    RecordProperty("runs", static_cast<int>(runs));
    EXPECT_GT(runs, families.size() * errorsFor(GetParam()).size() * 2);
}

INSTANTIATE_TEST_SUITE_P(All, FileFaultsOfOperation, testing::ValuesIn(operations),
                         [](const auto& row) {
                             std::string name(row.param.name);
                             std::erase(name, ' ');
                             return name;
                         });

TEST(FileFaults, aCleanThatIgnoresErrorsHarmsNothingAndNeverThrows) {
    for (const Browser browser : {Browser::chromium, Browser::firefox, Browser::safari}) {
        const std::array only{browser};
        const SampleHome home(only);
        for (std::size_t step = 1;; ++step) {
            SCOPED_TRACE(std::string(rawValue(browser)) + ", step " + std::to_string(step));
            const auto manager = std::make_shared<FaultyFileManager>(
                home.fileManager(), Fault{step + 2, std::errc::io_error, Fault::Duration::once});
            const auto data = dataOf(*SampleHome::cleaner(browser, manager));
            EXPECT_NO_THROW(data.cleanIgnoringErrors());
            const std::vector<std::string> changed = home.changes();
            EXPECT_EQ(home.harm(changed), std::vector<std::string>());
            home.restore(changed);
            if (manager->failed().empty()) {
                break;
            }
        }
    }
}

TEST(FileFaults, aCleanOfTheWholeHomeTakesAllThatIsSelectedAndNothingElse) {
    const SampleHome home;
    for (const Browser browser : allBrowsers) {
        SCOPED_TRACE(rawValue(browser));
        const auto data = dataOf(*SampleHome::cleaner(browser, home.fileManager()));
        EXPECT_GT(data.size().itemCount.value, 10);
        data.clean();
        EXPECT_EQ(data.size(), CleanableDataSize::zero);
    }
    EXPECT_EQ(home.harm(), std::vector<std::string>());
    EXPECT_EQ(tests::filesBelow(home.temporaryFolder()).size(), 0U);
}

}  // namespace
}  // namespace browsersweep

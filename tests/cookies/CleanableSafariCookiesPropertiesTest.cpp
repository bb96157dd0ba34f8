#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "browsersweep/cookies/CleanableSafariCookies.h"

#include "tests/support/BinaryCookieFileBuilder.h"
#include "tests/support/DateFilter.h"
#include "tests/support/ForwardingFileManager.h"

// In a namespace of its own: short names for what only this model knows.
namespace browsersweep::cookie_model {
namespace {

namespace fs = std::filesystem;
using tests::ByteText;
using tests::cookieFile;
using tests::cookiePage;
using tests::CookieRecord;
using tests::dates;
using tests::emptyDictionary;
using tests::inside;
using tests::outside;
using Filters = std::vector<CleanableDataFilter>;
using Lines = std::vector<std::string>;
using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;

/** What a file, or what is done with it, fails with. */
enum class Failure { none, exception, number };

void failAs(Failure failure) {
    if (failure == Failure::exception) {
        throw std::runtime_error("refused");
    }
    if (failure == Failure::number) {
        throw 42;
    }
}

std::string messageOf(Failure failure) {
    return failure == Failure::exception ? "refused" : "unknown error";
}

/** A cookie as a model has it: what it was created with, and what size its record claims. */
struct Cookie {
    double creation = 0;
    bool hasAbsurdSize = false;

    Bytes record() const {
        CookieRecord record;
        record.creation = creation;
        Bytes data = record.data();
        if (hasAbsurdSize) {
            std::fill_n(data.begin(), 4, std::uint8_t{0xFF});
        }
        return data;
    }
};

using Pages = std::vector<std::vector<Cookie>>;

/** One of the two cookie files. */
struct CookieFile {
    Pages pages;
    bool isDamaged = false;
    bool hasTextAsMetadata = false;  ///< shorter than what it is written back as
    Failure reading = Failure::none;
    Failure writing = Failure::none;
    Failure asking = Failure::none;

    Bytes contents() const {
        return isDamaged ? Bytes{'b', 'a', 'd'}
                         : withMetadata(hasTextAsMetadata ? Bytes{'x'} : emptyDictionary());
    }

    /** As it is written back: the metadata in binary form. */
    Bytes written() const {
        const Bytes text = ByteText()
                               .text("bplist00")
                               .text("\x51x\x08")
                               .little(0, 6)
                               .little(1, 1)
                               .little(1, 1)
                               .big(1, 8)
                               .big(0, 8)
                               .big(10, 8)
                               .data();
        return withMetadata(hasTextAsMetadata ? text : emptyDictionary());
    }

    bool canBeWritten() const {
        return std::none_of(pages.begin(), pages.end(), [](const std::vector<Cookie>& page) {
            return std::any_of(page.begin(), page.end(),
                               [](const Cookie& cookie) { return cookie.hasAbsurdSize; });
        });
    }

    /** The size that the system tells. It is not that of the contents, to tell the two apart. */
    std::int64_t toldSize() const { return static_cast<std::int64_t>(contents().size()) + 1000; }

    std::int64_t cookieCount() const {
        std::size_t count = 0;
        for (const auto& page : pages) {
            count += page.size();
        }
        return static_cast<std::int64_t>(count);
    }

private:
    Bytes withMetadata(const Bytes& metadata) const {
        std::vector<Bytes> data;
        for (const auto& page : pages) {
            std::vector<Bytes> records;
            for (const Cookie& cookie : page) {
                records.push_back(cookie.record());
            }
            data.push_back(cookiePage(records));
        }
        return cookieFile(data, metadata);
    }
};

/** Everything that happens, in order. */
using Events = std::shared_ptr<Lines>;

/** Files that exist only here, and note what is done with them. */
class CookieFiles final : public tests::ForwardingFileManager {
public:
    CookieFiles(std::map<fs::path, CookieFile> files, Events events)
        : ForwardingFileManager(nullptr), files_(std::move(files)), events_(std::move(events)) {}

    std::shared_ptr<OperationControl> control() const noexcept override { return control_; }
    FileExistence fileExists(const fs::path& path) const noexcept override {
        return {files_.contains(path), false};
    }
    FileAttributes attributes(const fs::path& path) const override {
        failAs(files_.at(path).asking);
        return {static_cast<std::uint64_t>(files_.at(path).toldSize())};
    }
    Bytes contents(const fs::path& path) const override {
        events_->push_back("read " + path.native());
        failAs(files_.at(path).reading);
        return files_.at(path).contents();
    }
    void removeFile(const fs::path& path) const override {
        failAs(files_.at(path).writing);
        events_->push_back("remove " + path.native());
    }
    void replace(const fs::path& path, BytesView contents) const override {
        failAs(files_.at(path).writing);
        events_->push_back("replace " + path.native() + " by " +
                           std::string(contents.begin(), contents.end()));
    }
    void stopFromNowOn() {
        control_ = std::make_shared<OperationControl>([](auto&) { return true; });
    }

private:
    std::map<fs::path, CookieFile> files_;
    Events events_;
    std::shared_ptr<OperationControl> control_;
};

class Library final : public CurrentUserDirectoryProvider {
public:
    fs::path applicationSupportDirectory() const override { return "/none"; }
    fs::path cachesDirectory() const override { return "/none"; }
    fs::path libraryDirectory() const override { return "/my library"; }
};

const fs::path firstPath = "/my library/Cookies/Cookies.binarycookies";
const fs::path secondPath =
    "/my library/Containers/com.apple.Safari/Data/Library/Cookies/Cookies.binarycookies";

class Storage final : public HTTPCookieStorage {
public:
    Storage(Lines domains, Events events)
        : domains_(std::move(domains)), events_(std::move(events)) {}
    std::vector<HTTPCookie> cookies() const override {
        std::vector<HTTPCookie> cookies;
        for (const std::string& domain : domains_) {
            cookies.push_back({domain, "n", "/"});
        }
        return cookies;
    }
    void setCookie(const HTTPCookie& /*cookie*/) override {}
    void deleteCookie(const HTTPCookie& cookie) override {
        events_->push_back("delete " + cookie.domain);
    }

private:
    Lines domains_;
    Events events_;
};

class Launcher final : public ProcessLauncher {
public:
    explicit Launcher(Events events) : events_(std::move(events)) {}
    void runAndWait(const fs::path& executable,
                    std::span<const std::string> arguments) const noexcept override {
        events_->push_back("run " + executable.native() + " " + arguments[0] + " " + arguments[1]);
    }

private:
    Events events_;
};

class Log final : public SystemLog {
public:
    explicit Log(Events events) : events_(std::move(events)) {}
    void debug(std::string_view message) const noexcept override {
        events_->push_back("log " + std::string(message));
    }

private:
    Events events_;
};

/** Safari's cookies as a user may have them. */
struct World {
    std::optional<CookieFile> first;
    std::optional<CookieFile> second;
    Lines domains;
    Filters filters;

    std::vector<std::pair<fs::path, CookieFile>> files() const {
        std::vector<std::pair<fs::path, CookieFile>> present;
        if (first) {
            present.emplace_back(firstPath, *first);
        }
        if (second) {
            present.emplace_back(secondPath, *second);
        }
        return present;
    }
};

std::shared_ptr<CookieFiles> fileManagerOf(const World& world, const Events& events) {
    const auto files = world.files();
    return std::make_shared<CookieFiles>(std::map<fs::path, CookieFile>(files.begin(), files.end()),
                                         events);
}

CleanableSafariCookies itemOf(const World& world, const Events& events,
                              std::shared_ptr<const FileManager> fileManager) {
    SystemServices services;
    services.sharedCookieStorage = [&](std::string_view /*identifier*/) {
        return std::make_shared<Storage>(world.domains, events);
    };
    services.processLauncher = std::make_shared<const Launcher>(events);
    services.systemLog = std::make_shared<const Log>(events);
    return CleanableSafariCookies(Home(std::move(fileManager), std::make_shared<const Library>())
                                      .withServices(std::move(services)));
}

// The model: the rules, as plainly as they can be said.

bool isInRange(const Dates& range, double creation) {
    const auto seconds = [](const std::optional<Date>& date, double absent) {
        return date ? referenceSeconds(*date) : absent;
    };
    const bool isInside =
        seconds(range.startDate, -1e9) <= creation && creation <= seconds(range.endDate, 1e9);
    const bool isUnbounded = !range.startDate && !range.endDate;
    return isUnbounded || isInside == (range.rule == Dates::Rule::insideRange);
}

bool goes(const Cookie& cookie, const Filters& filters) {
    for (const CleanableDataFilter& filter : filters) {
        const bool excludes =
            filter.patternsData && filter.patternsData->rule == Patterns::Rule::exclude;
        if (!excludes && (!filter.datesData || isInRange(*filter.datesData, cookie.creation))) {
            return true;
        }
    }
    return false;
}

CookieFile withoutWhatGoes(CookieFile file, const Filters& filters) {
    for (auto& page : file.pages) {
        std::erase_if(page, [&](const Cookie& cookie) { return goes(cookie, filters); });
    }
    std::erase_if(file.pages, [](const auto& page) { return page.empty(); });
    return file;
}

std::string lowercase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool goes(const std::string& domain, const Filters& filters) {
    bool isSelected = true;
    for (const CleanableDataFilter& filter : filters) {
        for (const std::string& pattern : filter.patterns()) {
            if (lowercase(domain).find(lowercase(pattern)) != std::string::npos) {
                isSelected = filter.rule() == CleanableDataFilter::Rule::include;
            }
        }
    }
    return isSelected;
}

std::string urlOf(const fs::path& path) {
    const std::string text = path.native();
    return "file:///my%20library" + text.substr(std::string("/my library").size());
}

std::string logLine(const char* what, const fs::path& path, const std::string& why) {
    return std::string("log Could not ") + what + " cookies at " + urlOf(path) + ": " + why;
}

/** Why the file cannot be taken in, if it cannot. */
std::optional<std::string> readingError(const CookieFile& file) {
    if (file.reading != Failure::none) {
        return messageOf(file.reading);
    }
    return file.isDamaged ? std::optional<std::string>("Magic number is missing or incorrect")
                          : std::nullopt;
}

CleanableDataSize expectedSize(const CookieFile& file, const Filters& filters) {
    if (filters.empty()) {
        return file.asking == Failure::none ? CleanableDataSize{file.cookieCount(), file.toldSize()}
                                            : CleanableDataSize{file.cookieCount(), {0, true}};
    }
    const CookieFile rest = withoutWhatGoes(file, filters);
    const std::int64_t count = file.cookieCount() - rest.cookieCount();
    if (!rest.canBeWritten()) {
        return {count, {0, true}};
    }
    return {count, static_cast<std::int64_t>(file.contents().size()) -
                       static_cast<std::int64_t>(rest.written().size())};
}

std::pair<CleanableDataSize, Lines> expectedSizeAndEvents(const World& world) {
    CleanableDataSize sum;
    Lines events;
    for (const auto& [path, file] : world.files()) {
        events.push_back("read " + path.native());
        if (const auto why = readingError(file)) {
            events.push_back(logLine("read", path, *why));
        } else {
            sum = sum + expectedSize(file, world.filters);
        }
    }
    return {sum, events};
}

std::string expectedRewrite(const fs::path& path, const CookieFile& file, const Filters& filters) {
    const CookieFile rest = withoutWhatGoes(file, filters);
    if (const auto why = readingError(file)) {
        return logLine("clean", path, *why);
    }
    if (!rest.canBeWritten()) {
        return logLine("clean", path, "The sizes of the cookies of a page do not fit in 32 bits.");
    }
    const Bytes contents = rest.written();
    return file.writing == Failure::none
               ? "replace " + path.native() + " by " + std::string(contents.begin(), contents.end())
               : logLine("clean", path, messageOf(file.writing));
}

Lines expectedCleaning(const World& world) {
    Lines events{"run /bin/sh -c killall -KILL nsurlstoraged",
                 "run /bin/sh -c killall -KILL nsurlsessiond"};
    for (const auto& [path, file] : world.files()) {
        if (!world.filters.empty()) {
            events.push_back("read " + path.native());
            events.push_back(expectedRewrite(path, file, world.filters));
        } else if (file.writing == Failure::none) {
            events.push_back("remove " + path.native());
        } else {
            events.push_back(logLine("clean", path, messageOf(file.writing)));
        }
    }
    for (const std::string& domain : world.domains) {
        if (goes(domain, world.filters)) {
            events.push_back("delete " + domain);
        }
    }
    return events;
}

std::pair<CleanableDataSize, Lines> sizeAndEvents(const World& world) {
    const Events events = std::make_shared<Lines>();
    const CleanableDataSize size =
        itemOf(world, events, fileManagerOf(world, events)).size(world.filters);
    return {size, *events};
}

Lines cleaningOf(const World& world) {
    const Events events = std::make_shared<Lines>();
    itemOf(world, events, fileManagerOf(world, events)).clean(world.filters);
    return *events;
}

// Random worlds. Few different values, so that they meet often.

bool oneIn(int number) {
    return *rc::gen::inRange(0, number) == 0;
}

template <typename Make>
auto some(int most, Make make) {
    std::vector<decltype(make())> list;
    for (int count = *rc::gen::inRange(0, most + 1); count > 0; --count) {
        list.push_back(make());
    }
    return list;
}

double smallTime() {
    return *rc::gen::inRange(-2, 3) * 0.5;
}

Failure rareFailure() {
    return oneIn(8) ? *rc::gen::element(Failure::exception, Failure::number) : Failure::none;
}

std::optional<CookieFile> randomFile() {
    if (oneIn(4)) {
        return std::nullopt;
    }
    CookieFile file;
    file.pages = some(3, [] { return some(3, [] { return Cookie{smallTime(), oneIn(12)}; }); });
    file.isDamaged = oneIn(8);
    file.hasTextAsMetadata = oneIn(3);
    file.reading = rareFailure();
    file.writing = rareFailure();
    file.asking = rareFailure();
    return file;
}

CleanableDataFilter randomFilter() {
    const auto bound = [] {
        return oneIn(3) ? std::nullopt : std::optional(dateFromReferenceSeconds(smallTime()));
    };
    CleanableDataFilter filter;
    if (oneIn(2)) {
        const auto texts =
            some(2, [] { return *rc::gen::element<std::string>("example", "EX", "net", "zz"); });
        filter.patternsData =
            Patterns(*rc::gen::element(Patterns::Rule::include, Patterns::Rule::exclude), texts);
    }
    if (!oneIn(3)) {
        const auto start = bound();
        filter.datesData = Dates(*rc::gen::element(inside, outside), start, bound());
    }
    return filter;
}

World randomWorld() {
    World world;
    world.first = randomFile();
    world.second = randomFile();
    world.domains = some(3, [] {
        return *rc::gen::element<std::string>("example.org", "www.EXAMPLE.net", "other.net", "t");
    });
    world.filters = oneIn(4) ? Filters() : some(3, randomFilter);
    return world;
}

CookieFile fileOf(std::vector<double> creations) {
    std::vector<Cookie> page;
    for (const double creation : creations) {
        page.push_back({creation});
    }
    CookieFile file;
    file.pages = {page};
    return file;
}

CleanableDataFilter with(CleanableDataFilter filter, Patterns::Rule rule, std::string pattern) {
    filter.patternsData = Patterns{rule, {std::move(pattern)}};
    return filter;
}

}  // namespace

RC_GTEST_PROP(CleanableSafariCookiesProperties, measuresAsTheRulesSay, ()) {
    const World world = randomWorld();
    RC_ASSERT(sizeAndEvents(world) == expectedSizeAndEvents(world));
}

RC_GTEST_PROP(CleanableSafariCookiesProperties, cleansAsTheRulesSayInTheirOrder, ()) {
    const World world = randomWorld();
    RC_ASSERT(cleaningOf(world) == expectedCleaning(world));
}

TEST(CleanableSafariCookiesProperties, daemonsStopBeforeTheFirstFileAndTheStorageComesLast) {
    const World world{fileOf({1}), fileOf({1}), {"a", "b"}, {}};
    EXPECT_EQ(cleaningOf(world),
              (Lines{"run /bin/sh -c killall -KILL nsurlstoraged",
                     "run /bin/sh -c killall -KILL nsurlsessiond", "remove " + firstPath.native(),
                     "remove " + secondPath.native(), "delete a", "delete b"}));
}

TEST(CleanableSafariCookiesProperties, aCookieGoesWhereAnyOfSeveralFiltersSelectsIt) {
    const auto excluding = with(dates(inside, 0, 9), Patterns::Rule::exclude, "x");
    const auto including = with(dates(inside, 2, 3), Patterns::Rule::include, "x");
    const auto late = dates(inside, 5, std::nullopt);
    struct Row {
        Filters filters;
        std::int64_t count;  // of the cookies of the times 1, 2 and 5
    };
    const std::vector<Row> rows{
        {{excluding}, 0},
        {{including}, 1},
        {{late}, 1},
        {{excluding, late}, 1},
        {{late, excluding}, 1},
        {{including, late}, 2},
        {{excluding, including, late}, 2},
        {{CleanableDataFilter()}, 3},
    };
    for (const Row& row : rows) {
        const World world{fileOf({1, 2, 5}), std::nullopt, {}, row.filters};
        EXPECT_EQ(sizeAndEvents(world).first.itemCount, CleanableDataSize::Measurement(row.count));
    }
}

TEST(CleanableSafariCookiesProperties, anExclusionThatMissesADomainLeavesItSelected) {
    const Filters filters{with({}, Patterns::Rule::exclude, "example")};
    const World world{std::nullopt, std::nullopt, {"example.org", "other.net"}, filters};
    EXPECT_EQ(cleaningOf(world).back(), "delete other.net");
    EXPECT_EQ(cleaningOf(world).size(), 3U);
}

TEST(CleanableSafariCookiesProperties, aFileThatCannotBeEncodedIsApproximateAndStays) {
    World world{fileOf({1, 2}), fileOf({1}), {}, {dates(inside, 1, 1)}};
    world.first->pages[0][1].hasAbsurdSize = true;
    const auto saved =
        static_cast<std::int64_t>(world.second->contents().size() - CookieFile().written().size());
    EXPECT_EQ(sizeAndEvents(world).first, (CleanableDataSize{2, {saved, true}}));
    EXPECT_EQ(
        cleaningOf(world)[3],
        logLine("clean", firstPath, "The sizes of the cookies of a page do not fit in 32 bits."));
}

TEST(CleanableSafariCookiesProperties, aFileThatGrowsWhenItIsWrittenCountsWithNegativeBytes) {
    World world{fileOf({1}), std::nullopt, {}, {dates(inside, 2, 2)}};
    world.first->hasTextAsMetadata = true;
    EXPECT_EQ(sizeAndEvents(world).first, (CleanableDataSize{0, -42}));
}

TEST(CleanableSafariCookiesProperties, aFirstFileThatCannotBeReadDoesNotEndTheSum) {
    for (const Failure failure : {Failure::exception, Failure::number}) {
        World world{fileOf({1}), fileOf({1, 2}), {}, {}};
        world.first->reading = failure;
        EXPECT_EQ(sizeAndEvents(world),
                  std::pair(CleanableDataSize{2, world.second->toldSize()},
                            Lines{"read " + firstPath.native(),
                                  logLine("read", firstPath, messageOf(failure)),
                                  "read " + secondPath.native()}));
    }
}

TEST(CleanableSafariCookiesProperties, whateverIsThrownWhileAskingForTheSizeMakesItApproximate) {
    for (const Failure failure : {Failure::exception, Failure::number}) {
        World world{fileOf({1}), std::nullopt, {}, {}};
        world.first->asking = failure;
        EXPECT_EQ(sizeAndEvents(world).first, (CleanableDataSize{1, {0, true}}));
    }
}

TEST(CleanableSafariCookiesProperties, aHostThatStopsIsNoFailureOfAFile) {
    const World world{fileOf({1}), fileOf({1}), {"a"}, {}};
    const Events events = std::make_shared<Lines>();
    const auto fileManager = fileManagerOf(world, events);
    const CleanableSafariCookies item = itemOf(world, events, fileManager);
    fileManager->stopFromNowOn();
    EXPECT_THROW(item.size(), OperationCancelled);
    EXPECT_EQ(*events, Lines{});
    EXPECT_THROW(item.clean(), OperationCancelled);
    EXPECT_EQ(*events, Lines{});  // not even the daemons
}

TEST(CleanableSafariCookiesProperties, showsWhatItWasMadeOf) {
    const World world{std::nullopt, std::nullopt, {"a"}, {}};
    const Events events = std::make_shared<Lines>();
    const auto fileManager = fileManagerOf(world, events);
    const CleanableSafariCookies item = itemOf(world, events, fileManager);
    EXPECT_EQ(item.fileManager(), fileManager);
    EXPECT_EQ(item.directoryProvider()->libraryDirectory(), "/my library");
    EXPECT_EQ(item.cookieStorage()->cookies(), (std::vector<HTTPCookie>{{"a", "n", "/"}}));
    EXPECT_EQ(item.category(), CleanableDataCategory::httpCookies);
}

}  // namespace browsersweep::cookie_model

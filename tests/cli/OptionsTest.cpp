#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Filters.h"
#include "cli/Options.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

Options parsed(const std::vector<std::string>& arguments) {
    return std::get<Options>(parseCommandLine(arguments));
}

TEST(Options, nothingButACommandSelectsEverything) {
    const auto options = parsed({"size"});
    EXPECT_EQ(options.command, Command::size);
    EXPECT_EQ(options.selection.selectedBrowsers(),
              std::vector<Browser>(allBrowsers.begin(), allBrowsers.end()));
    for (const auto category : allCleanableDataCategories) {
        EXPECT_TRUE(options.selection.includes(category));
    }
    EXPECT_TRUE(options.filters.empty());
    EXPECT_FALSE(options.home || options.json || options.yes || options.dryRun || options.force ||
                 options.ignoreErrors || options.selection.primaryOnly);
}

TEST(Options, everyOptionIsTaken) {
    const auto options =
        parsed({"--home", "/h", "--json", "clean", "--browser", "opera", "--browser=brave",
                "--profile", "", "--profile=A B", "--primary-only", "--category", "history",
                "--ignore-errors", "--dry-run", "--yes", "--force"});
    EXPECT_EQ(options.command, Command::clean);
    EXPECT_EQ(options.home, std::filesystem::path("/h"));
    EXPECT_EQ(options.selection.selectedBrowsers(),
              (std::vector<Browser>{Browser::brave, Browser::opera}));
    EXPECT_EQ(options.selection.profileNames, (std::vector<std::string>{"", "A B"}));
    EXPECT_EQ(options.selection.categories,
              std::vector<CleanableDataCategory>{CleanableDataCategory::history});
    EXPECT_TRUE(options.json && options.yes && options.dryRun && options.force &&
                options.ignoreErrors && options.selection.primaryOnly);
}

TEST(Options, filtersKeepTheOrderOfTheCommandLineAcrossTheirOptions) {
    using Rule = CleanableDataFilter::Rule;
    using DatesRule = CleanableDataFilter::Dates::Rule;
    const auto options = parsed({"--outside", "1..2", "size", "--include=a", "--exclude", "b",
                                 "--filter", "{}", "--inside=..3", "--include", "c", "--filter",
                                 R"({"patterns":{"rule":"include","patterns":["d"]}})"});
    EXPECT_EQ(options.filters,
              (std::vector<CleanableDataFilter>{
                  datesFilter(DatesRule::outsideRange, "1..2"), patternFilter(Rule::include, "a"),
                  patternFilter(Rule::exclude, "b"), CleanableDataFilter{},
                  datesFilter(DatesRule::insideRange, "..3"), patternFilter(Rule::include, "c"),
                  patternFilter(Rule::include, "d")}));
}

TEST(Options, valuesAreTakenAsTheyStand) {
    for (const std::string pattern : {"[a,b]", "-x", "a=b", "{}", "--x", "a b", "size"}) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(parsed({"size", "--include=" + pattern}).filters.at(0).patterns(),
                  std::set<std::string>{pattern});
    }
    EXPECT_EQ(parsed({"size", "--include", "-x"}).filters.at(0).patterns(),
              std::set<std::string>{"-x"});
}

TEST(Options, relativePathsAreMadeAbsolute) {
    EXPECT_EQ(parsed({"size", "--home", "x"}).home, std::filesystem::current_path() / "x");
    EXPECT_EQ(parsed({"size", "--html", "-"}).html, std::filesystem::path("-"));
    EXPECT_EQ(parsed({"size", "--html", "x"}).html, std::filesystem::current_path() / "x");
}

TEST(Options, wrongCommandLinesSayWhatIsWrongAndWhatIsRight) {
    struct Row {
        std::vector<std::string> arguments;
        std::string message;
    };
    const std::vector<Row> rows = {
        {{"sizes"}, "'sizes' is not a command; did you mean size?"},
        {{"size", "x"},
         "'x' is one word too many after the command size; give browsers with --browser and "
         "patterns with --include or --exclude"},
        {{"size", "--browser", "Opera"},
         "--browser: 'Opera' is not a browser; did you mean opera?"},
        {{"size", "-c", "form"}, "--category: 'form' is not a category; did you mean formData?"},
        {{"size", "--browsers", "x"}, "'--browsers' is not an option; did you mean --browser?"},
        {{"size", "--profile"}, "--profile needs a value; write --profile=VALUE"},
        {{"clean", "-b", "--yes"}, "--browser needs a value; write --browser=VALUE"},
        {{"help", "sizes"}, "'sizes' is not a command; did you mean size?"},
        {{"help", "-b", "opera"},
         "--browser belongs to the commands that look at data; leave it out"},
        {{"clean", "--profile", "--yes"}, "--profile needs a value; write --profile=VALUE"},
        {{"bookmarks", "--include=a"},
         "--include belongs to the commands size and clean; leave it out"},
        {{"size", "--html", ""}, "--html: the value is empty; give the file to write"},
        {{"size", "--html", "-", "--json"},
         "--json and --html - both write to standard output; give a file to --html"},
        {{"size", "--html", "a", "--html=b"}, "--html is given twice; give one file"},
        {{"--home", "a", "--home", "b", "size"}, "--home is given twice; give one folder"},
        {{"size", "--by", "site"},
         "--by: 'site' is not a part of a report; it must be one of browser, category, profile"},
        {{"size", "--sort", "date"},
         "--sort: 'date' is not an order; it must be one of size, name, items, last"},
        {{"size", "--by", "browser", "--by=profile"}, "--by is given twice; give one of them"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        try {
            parseCommandLine(row.arguments);
            FAIL() << "the command line was taken";
        } catch (const UsageError& error) {
            EXPECT_EQ(error.what(), row.message);
        }
    }
}

TEST(Options, shortOptionsMeanTheLongOnes) {
    const auto options = parsed({"-b", "opera", "-bbrave", "clean", "-c", "history", "-ny"});
    EXPECT_EQ(options.selection.selectedBrowsers(),
              (std::vector<Browser>{Browser::brave, Browser::opera}));
    EXPECT_EQ(options.selection.categories,
              std::vector<CleanableDataCategory>{CleanableDataCategory::history});
    EXPECT_TRUE(options.dryRun && options.yes);
}

TEST(Options, browsersAndCategoriesGoByShortNamesToo) {
    const auto options = parsed({"size", "-b", "chrome", "--browser=edge", "-c", "cookies"});
    EXPECT_EQ(options.selection.selectedBrowsers(),
              (std::vector<Browser>{Browser::googleChrome, Browser::microsoftEdge}));
    EXPECT_EQ(options.selection.categories,
              std::vector<CleanableDataCategory>{CleanableDataCategory::httpCookies});
}

TEST(Options, theNameOfACommandMayBeAValue) {
    const auto options = parsed({"--include", "clean", "size", "--profile", "help"});
    EXPECT_EQ(options.command, Command::size);
    EXPECT_EQ(options.filters.at(0).patterns(), std::set<std::string>{"clean"});
    EXPECT_EQ(options.selection.profileNames, std::vector<std::string>{"help"});
}

std::string information(const std::vector<std::string>& arguments) {
    return std::get<Information>(parseCommandLine(arguments)).text;
}

TEST(Options, helpAndVersionAreInformation) {
    const auto overview = information({"--help"});
    EXPECT_EQ(overview.rfind("browsersweep - ", 0), 0U);
    EXPECT_EQ(information({"help"}), overview);
    EXPECT_EQ(information({"-h", "--home=x"}), overview);
    EXPECT_EQ(information({"--version"}).rfind("browsersweep ", 0), 0U);
    EXPECT_EQ(information({"size", "--version"}), information({"--version"}));
}

TEST(Options, withoutArgumentsTheHelpIsShortEnoughForASmallTerminal) {
    constexpr std::ptrdiff_t lines = 23;
    const auto summary = information({});
    EXPECT_EQ(summary.rfind("browsersweep - ", 0), 0U);
    EXPECT_LE(std::count(summary.begin(), summary.end(), '\n'), lines);
    for (const auto& row : commandTable()) {
        EXPECT_NE(summary.find("\n  " + std::string(row.name) + " "), std::string::npos);
    }
}

TEST(Options, aReportIsShownAsItIsAskedFor) {
    const auto usual = parsed({"size"}).view;
    EXPECT_EQ(usual.grouping, std::nullopt);
    EXPECT_EQ(usual.order, Order::size);
    EXPECT_FALSE(usual.showsZeros);
    EXPECT_TRUE(usual.offersZeros);
    const auto view = parsed({"size", "--by", "profile", "--sort=items", "--all"}).view;
    EXPECT_EQ(view.grouping, Grouping::profile);
    EXPECT_EQ(view.order, Order::items);
    EXPECT_TRUE(view.showsZeros);
    EXPECT_FALSE(parsed({"clean", "--by", "category"}).view.offersZeros);
}

TEST(Options, eachCommandHasItsOwnHelp) {
    for (const auto& row : commandTable()) {
        const std::string name(row.name);
        SCOPED_TRACE(name);
        const auto help = information({"help", name});
        EXPECT_EQ(help.rfind("browsersweep " + name + " - ", 0), 0U);
        EXPECT_EQ(information({name, "-h"}), help);
        EXPECT_EQ(information({"--help", name}), help);
        EXPECT_EQ(information({name, "--browser", "none", "--help"}), help);
    }
}

TEST(Options, theHelpOfACommandShowsWhatItTakes) {
    const auto size = information({"help", "size"});
    const auto clean = information({"help", "clean"});
    EXPECT_NE(size.find("\n  --html FILE "), std::string::npos);
    EXPECT_EQ(size.find("--dry-run"), std::string::npos);
    EXPECT_EQ(clean.find("--html"), std::string::npos);
    EXPECT_NE(clean.find("\n  -n, --dry-run "), std::string::npos);
    EXPECT_NE(clean.find("\n  -b, --browser BROWSER "), std::string::npos);
    EXPECT_EQ(information({"help", "doctor"}).find("--include"), std::string::npos);
}

}  // namespace
}  // namespace browsersweep::cli

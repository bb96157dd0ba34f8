#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/KeepFile.h"
#include "cli/Options.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Category = CleanableDataCategory;
using Texts = std::vector<std::string>;

std::string faultOf(const std::string& text) {
    try {
        parseKeepRules(text, "/k");
        return "";
    } catch (const UsageError& error) {
        return error.what();
    }
}

TEST(KeepFile, hasARuleInEachLine) {
    const auto rules = parseKeepRules(
        "\xEF\xBB\xBF# mine\r\n\n site\texample.com  # bank\r\nbrowser firefox\nbrowser chrome\n"
        "category cookies\ncategory history",
        "/k");
    EXPECT_EQ(rules.file, "/k");
    EXPECT_EQ(rules.sites, Texts{"example.com"});
    EXPECT_EQ(rules.browsers, (std::vector{Browser::firefox, Browser::googleChrome}));
    EXPECT_EQ(rules.categories, (std::vector{Category::httpCookies, Category::history}));
    EXPECT_TRUE(parseKeepRules("# nothing\n\n", "/k").isEmpty());
}

TEST(KeepFile, namesTheLineThatIsWrong) {
    EXPECT_EQ(faultOf("# a\nsites example.com\n"),
              "the keep list /k is wrong in line 2: 'sites' is not a rule; did you mean site? "
              "(nothing was deleted; --no-config ignores it)");
    for (const std::string line :
         {"site", "site a b", "site %", "browser lynx", "category everything", "example.com"}) {
        EXPECT_NE(faultOf("\n" + line).find("wrong in line 2"), std::string::npos) << line;
    }
    EXPECT_NE(faultOf("site \xFF").find("not UTF-8 text"), std::string::npos);
    EXPECT_NE(faultOf(std::string("site a.com\0", 11)).find("not UTF-8 text"), std::string::npos);
}

TEST(KeepFile, takesBrowsersAndCategoriesOutOfTheSelection) {
    Options options;
    options.command = Command::clean;
    options.selection.browsers = {Browser::firefox, Browser::opera};
    keep(parseKeepRules("browser firefox\ncategory cache", "/k"), options);
    EXPECT_EQ(options.selection.selectedBrowsers(), std::vector{Browser::opera});
    EXPECT_FALSE(options.selection.includes(Category::cache));
    EXPECT_TRUE(options.selection.includes(Category::history));
    EXPECT_TRUE(options.filters.empty());
}

TEST(KeepFile, keepsSitesInACleanByAFilterAfterTheOthers) {
    Options options;
    options.command = Command::clean;
    options.filters = {{CleanableDataFilter::Rule::include, {"a"}}};
    keep(parseKeepRules("site b.com\nsite a.com\n", "/k"), options);
    ASSERT_EQ(options.filters.size(), 2U);
    EXPECT_EQ(options.filters.back(),
              CleanableDataFilter(CleanableDataFilter::Rule::exclude, {"a.com", "b.com"}));
}

TEST(KeepFile, keepsSitesAndCategoriesFromBeingForgotten) {
    Options options;
    options.command = Command::forget;
    options.sites.names = {"other.com"};
    keep(parseKeepRules("site example.com\ncategory cookies\n", "/k"), options);
    EXPECT_EQ(options.sites.alwaysKept, Texts{"example.com"});
    EXPECT_EQ(options.sites.keptCategories, std::vector{Category::httpCookies});
    options.sites.names = {"example.com"};
    EXPECT_THROW(keep(parseKeepRules("site example.com\n", "/k"), options), UsageError);
}

TEST(KeepFile, saysInOneLineWhatIsKept) {
    EXPECT_EQ(keepText(parseKeepRules("site a.com\nsite b.com\nbrowser firefox\ncategory cookies\n",
                                      "/k")),
              "left alone because of /k: sites a.com, b.com; browsers Firefox; categories Cookies "
              "(--no-config ignores it)");
}

}  // namespace
}  // namespace browsersweep::cli

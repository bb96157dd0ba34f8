#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Options.h"
#include "cli/SiteCommands.h"
#include "cli/UsageError.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::cli {
namespace {

using Texts = std::vector<std::string>;

Options parsed(const Texts& arguments) {
    return std::get<Options>(parseCommandLine(arguments));
}

TEST(SiteCommands, takeEveryOption) {
    const auto options = parsed({"sites", "--kind", "cookies", "--kind=history", "--sort", "last",
                                 "--older-than", "12h", "--html", "/page.html"});
    EXPECT_EQ(options.command, Command::sites);
    EXPECT_EQ(options.sites.kinds, (Texts{"cookies", "history"}));
    EXPECT_EQ(options.view.order, Order::last);
    EXPECT_EQ(options.sites.olderThan, 12.0 * 3600);
    EXPECT_EQ(options.html, std::filesystem::path("/page.html"));
    const auto all = parsed({"forget", "--all", "--keep", "a.com", "--keep=b.com", "--keep-list",
                             "/list", "--mixed", "--settings"});
    EXPECT_EQ(all.command, Command::forget);
    EXPECT_TRUE(all.sites.all && all.sites.takesMixed && all.sites.takesSettings);
    EXPECT_EQ(all.sites.kept, (Texts{"a.com", "b.com"}));
    EXPECT_EQ(all.sites.keepList, std::filesystem::path("/list"));
}

TEST(SiteCommands, takeTheNamesOfSitesAfterForget) {
    const auto options = parsed({"forget", "a.com", "--mixed", "www.b.com", "--", "c.com"});
    EXPECT_EQ(options.sites.names, (Texts{"a.com", "www.b.com", "c.com"}));
    EXPECT_FALSE(options.sites.all);
}

TEST(SiteCommands, knowAges) {
    for (const auto& [text, days] : {std::pair{"2d", 2.0}, {"3w", 21.0}, {"1y", 365.0}}) {
        EXPECT_EQ(parsed({"sites", "--older-than", text}).sites.olderThan, days * 86400) << text;
    }
    for (const std::string text : {"", "d", "30", "30m", "-1d", "1.5d", "12345678d", "1 d"}) {
        EXPECT_THROW(parsed({"sites", "--older-than=" + text}), UsageError) << text;
    }
}

TEST(SiteCommands, refuseWhatDoesNotFitTogether) {
    const std::vector<Texts> wrong{
        {"forget"},
        {"forget", "--all", "a.com"},
        {"forget", "a.com", "--keep", "b.com"},
        {"forget", "a.com", "--keep-list", "/list"},
        {"forget", "a b"},
        {"forget", "--all", "--keep", "a b"},
        {"forget", "--all", "--sort", "name"},
        {"forget", "a.com", "--include", "a"},
        {"forget", "a.com", "--html", "/page"},
        {"sites", "a.com"},
        {"sites", "--yes"},
        {"sites", "--sort", "date"},
        {"sites", "--sort", "name", "--sort", "last"},
        {"sites", "--kind", "cache"},
        {"size", "--kind", "cookies"},
    };
    for (const auto& arguments : wrong) {
        EXPECT_THROW(parsed(arguments), UsageError) << arguments.back();
    }
}

TEST(SiteCommands, wrongCommandLinesSayWhatIsRight) {
    struct Row {
        Texts arguments;
        std::string message;
    };
    const std::vector<Row> rows{
        {{"--json"},
         "no command is given; it must be one of browsers, profiles, size, clean, sites, forget, "
         "bookmarks, notifications, doctor, help"},
        {{"size", "-n"}, "--dry-run belongs to the commands clean and forget; leave it out"},
        {{"size", "--yes"}, "--yes belongs to the commands clean and forget; leave it out"},
        {{"browsers", "--html=a"}, "--html belongs to the commands size and sites; leave it out"},
        {{"size", "--kind=icons"}, "--kind belongs to the commands sites and forget; leave it out"},
        {{"sites", "--all"}, "--all belongs to the commands size and forget; leave it out"},
        {{"forget", "--sort=name"},
         "--sort belongs to the commands size, clean and sites; leave it out"},
        {{"clean", "--sort", "last"},
         "--sort last belongs to the command sites; sort by size, name or items"},
        {{"sites", "--kind=Cookies"}, "--kind: 'Cookies' is not a kind; did you mean cookies?"},
        {{"forget", "a b"}, "'a b' is not a site; write a name such as example.com"},
        {{"forget"}, "forget needs a site, or --all for every site"},
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

TEST(SiteCommands, readTheSitesToKeepFromAFile) {
    const tests::TemporaryFolder folder;
    SiteOptions options;
    options.kept = {"a.com"};
    readKeepList(options);
    EXPECT_EQ(options.kept, Texts{"a.com"});
    options.keepList = folder.write("list", "b.com\n# c.com\nd.com");
    readKeepList(options);
    EXPECT_EQ(options.kept, (Texts{"a.com", "b.com", "d.com"}));
    options.keepList = folder.write("wrong", "b.com\n?\n");
    EXPECT_THROW(readKeepList(options), UsageError);
    options.keepList = folder / "missing";
    EXPECT_THROW(readKeepList(options), UsageError);
    options.keepList = folder.path();
    EXPECT_THROW(readKeepList(options), UsageError);
}

}  // namespace
}  // namespace browsersweep::cli

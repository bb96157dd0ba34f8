#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"

#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

/** What a profile was made of. */
struct Made {
    std::string name;
    bool isPrimary;
    bool isRelative;
    fs::path path;

    friend bool operator==(const Made&, const Made&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Made& made) {
        return out << made.name << (made.isPrimary ? " primary" : "")
                   << (made.isRelative ? " relative " : " absolute ") << made.path;
    }
};

/** A home folder with a "profiles.ini" in it. */
class FirefoxProfileReaderTest : public testing::Test {
protected:
    static constexpr const char* iniFile = "Library/Application Support/Firefox/profiles.ini";

    std::vector<Made> profilesOf(std::string_view text) const {
        home_.write(iniFile, text);
        return profiles();
    }

    std::vector<Made> profiles() const {
        std::vector<Made> result;
        for (const auto& profile : FirefoxProfileReader(fileManager()).profiles()) {
            EXPECT_EQ(profile->sourceBrowser(), Browser::firefox);
            const auto& firefox = dynamic_cast<const FirefoxProfile&>(*profile);
            result.push_back({firefox.name().value_or("(none)"), firefox.isPrimary(),
                              firefox.isRelative(), firefox.path()});
        }
        return result;
    }

    std::shared_ptr<const FileManager> fileManager() const {
        return tests::GuardedFileManager::forFixture(home_);
    }

    tests::TemporaryFolder home_;
};

TEST_F(FirefoxProfileReaderTest, relativePathGetsTheFolderOfFirefoxInFrontOfIt) {
    EXPECT_EQ(profilesOf("[Profile0]\nName=default\nIsRelative=1\nPath=Profiles/abc.default\n"),
              (std::vector<Made>{{"default", false, true, "Firefox/Profiles/abc.default"}}));
}

TEST_F(FirefoxProfileReaderTest, absolutePathIsKeptAsItIs) {
    EXPECT_EQ(
        profilesOf("[Profile0]\nName=default\nIsRelative=0\nPath=/Volumes/Disk/abc.default\n"),
        (std::vector<Made>{{"default", false, false, "/Volumes/Disk/abc.default"}}));
}

TEST_F(FirefoxProfileReaderTest, pathThatIsCalledRelativeStaysBelowTheFolderOfFirefox) {
    EXPECT_EQ(profilesOf("[Profile0]\nName=a\nIsRelative=1\nPath=/abc\n"),
              (std::vector<Made>{{"a", false, true, "Firefox/abc"}}));
}

TEST_F(FirefoxProfileReaderTest, aPathThatLeadsElsewhereThanItSaysLeavesItsProfileOut) {
    struct Row {
        std::string path;
        bool isRelative;
        bool isLeftOut;
    };
    const std::vector<Row> rows{
        {"Profiles/a", true, false},          {"/abc", true, false},
        {"/Volumes/Disk/a", false, false},    {"..", true, true},
        {"../../Safari", true, true},         {".", false, true},
        {"Profiles/a", false, true},          {"/a/../b", false, true},
        {std::string("a\0b", 3), true, true}, {std::string("/a\0b", 4), false, true},
    };
    // What an error would come from, were it read.
    for (const char* name : {"places.sqlite", "permissions.sqlite"}) {
        home_.write(fs::path("Library/Application Support") / name, "no database");
    }
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        home_.write(iniFile, "[Profile0]\nName=a\nIsRelative=" +
                                 std::string(row.isRelative ? "1" : "0") + "\nPath=" + row.path);
        const auto found = FirefoxProfileReader(fileManager()).profiles();
        ASSERT_EQ(found.size(), 1U);
        EXPECT_EQ(found[0]->folder(), row.path);
        EXPECT_EQ(found[0]->leftOutReason().has_value(), row.isLeftOut);
        EXPECT_EQ(found[0]->cleanableData().lists().empty(), row.isLeftOut);
        if (row.isLeftOut) {
            EXPECT_TRUE(found[0]->bookmarks().empty());
            EXPECT_TRUE(found[0]->notificationSubscriptions().empty());
        }
    }
}

TEST_F(FirefoxProfileReaderTest, onlyTheValueOneIsTrue) {
    for (const char* value : {"0", "2", "true", "yes", "01"}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(profilesOf("[Profile0]\nName=a\nPath=/p\nIsRelative=" + std::string(value) +
                             "\nDefault=" + value + "\n"),
                  (std::vector<Made>{{"a", false, false, "/p"}}));
    }
    EXPECT_EQ(profilesOf("[Profile0]\nName=a\nPath=/p\n"),
              (std::vector<Made>{{"a", false, false, "/p"}}));
}

TEST_F(FirefoxProfileReaderTest, everyProfileMarkedAsDefaultIsPrimary) {
    EXPECT_EQ(profilesOf("[Profile0]\nName=a\nPath=/a\nDefault=1\n"
                         "[Profile1]\nName=b\nPath=/b\n"
                         "[Profile2]\nName=c\nPath=/c\nDefault=1\n"),
              (std::vector<Made>{
                  {"a", true, false, "/a"}, {"b", false, false, "/b"}, {"c", true, false, "/c"}}));
}

TEST_F(FirefoxProfileReaderTest, onlySectionsWhoseNameBeginsWithProfileAreProfiles) {
    EXPECT_EQ(profilesOf("[General]\nName=a\nPath=/a\n"
                         "[Install4F96D1932A9F858E]\nName=b\nPath=/b\nDefault=Profiles/b\n"
                         "[profile0]\nName=c\nPath=/c\n"
                         "[Profil0]\nName=c\nPath=/c\n"
                         "[BackgroundTasksProfiles]\nName=d\nPath=/d\n"
                         "[Profile]\nName=e\nPath=/e\n"
                         "[ProfileX]\nName=f\nPath=/f\n"),
              (std::vector<Made>{{"e", false, false, "/e"}, {"f", false, false, "/f"}}));
}

TEST_F(FirefoxProfileReaderTest, sectionWithoutNameOrPathIsSkipped) {
    EXPECT_EQ(profilesOf("[Profile0]\nName=a\n[Profile1]\nPath=/b\n[Profile2]\n"
                         "[Profile3]\nname=c\nPath=/c\n[Profile4]\nName=\nPath=/d\n"),
              (std::vector<Made>{}));
}

TEST_F(FirefoxProfileReaderTest, pathWithASpaceIsCutAtTheSpace) {
    EXPECT_EQ(profilesOf("[Profile0]\nName=My Work\nIsRelative=1\nPath=Profiles/abc.My Work\n"),
              (std::vector<Made>{{"My", false, true, "Firefox/Profiles/abc.My"}}));
}

TEST_F(FirefoxProfileReaderTest, byteOrderMarkIsNoPartOfTheText) {
    EXPECT_EQ(profilesOf("\uFEFF[Profile0]\r\nName=a\r\nPath=/a\r\n"),
              (std::vector<Made>{{"a", false, false, "/a"}}));
}

TEST_F(FirefoxProfileReaderTest, fileThatIsMissingEmptyOrADirectoryGivesNoProfiles) {
    EXPECT_EQ(profiles(), std::vector<Made>{});
    EXPECT_EQ(profilesOf(""), std::vector<Made>{});
    EXPECT_EQ(profilesOf("[General]\nStartWithLastProfile=1\n"), std::vector<Made>{});
    fs::remove(home_ / iniFile);
    home_.makeFolder(iniFile);
    EXPECT_EQ(profiles(), std::vector<Made>{});
}

TEST_F(FirefoxProfileReaderTest, fileThatIsNotUTF8IsAnError) {
    for (const char* text : {"[Profile0]\nName=caf\xE9\nPath=/a\n", "\xFF\xFE[\n", "\xC0\x80"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        try {
            profilesOf(text);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const DecodingError& error) {
            EXPECT_EQ(error.kind(), DecodingError::Kind::dataCorrupted);
            EXPECT_STREQ(error.what(), "profiles.ini is not UTF-8 text");
        }
    }
}

TEST_F(FirefoxProfileReaderTest, fileThatCannotBeReadIsAnError) {
    home_.write(iniFile, "[Profile0]\nName=a\nPath=/a\n");
    constexpr std::size_t readOfContents = 2;  // after the question whether it exists
    const FirefoxProfileReader reader(std::make_shared<tests::FaultyFileManager>(
        fileManager(),
        tests::Fault{readOfContents, std::errc::permission_denied, tests::Fault::Duration::once}));
    try {
        reader.profiles();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::permission_denied);
    }
}

TEST_F(FirefoxProfileReaderTest, hugeFileIsRead) {
    std::string text;
    constexpr std::size_t count = 20'000;
    for (std::size_t number = 0; number < count; ++number) {
        text += "[Profile" + std::to_string(number) + "]\nName=n\nPath=/p\n";
    }
    EXPECT_EQ(profilesOf(text), std::vector<Made>(count, Made{"n", false, false, "/p"}));
}

/** Directories that are nobody's home. */
class OtherDirectories : public CurrentUserDirectoryProvider {
public:
    explicit OtherDirectories(fs::path base) : base_(std::move(base)) {}
    fs::path applicationSupportDirectory() const override { return base_ / "support"; }
    fs::path cachesDirectory() const override { return base_ / "caches"; }
    fs::path libraryDirectory() const override { return base_ / "library"; }

private:
    fs::path base_;
};

TEST_F(FirefoxProfileReaderTest, profilesLieWhereTheDirectoryProviderSays) {
    home_.write("support/Firefox/profiles.ini", "[Profile0]\nName=a\nIsRelative=1\nPath=p\n");
    const auto profiles =
        FirefoxProfileReader({fileManager(), std::make_shared<OtherDirectories>(home_.path())})
            .profiles();
    ASSERT_EQ(profiles.size(), 1U);
    home_.write("caches/Firefox/p/cache2/entry", "12345");
    EXPECT_EQ(profiles[0]->cleanableData().size(), (CleanableDataSize{1, 5}));
}

}  // namespace
}  // namespace browsersweep

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/safari/SafariNamedProfileReader.h"

#include "tests/support/PlantedRows.h"
#include "tests/support/SafariHome.h"
#include "tests/support/SafariSchemas.h"

namespace browsersweep {
namespace {

using Lines = std::vector<std::string>;

class NamedProfiles : public testing::Test {
protected:
    static constexpr const char* work = "0F1E2D3C-0000-4000-8000-0123456789AB";
    static constexpr const char* old = "FFFFFFFF-0000-4000-8000-0123456789AB";

    Lines found() const {
        Lines lines;
        for (const auto& profile : SafariNamedProfileReader(home.home).profiles()) {
            lines.push_back(profile->name().value_or("(none)") + " " +
                            profile->folder().value_or(""));
        }
        return lines;
    }

    void list(const tests::PlantedRows& rows) const {
        tests::plant(tests::makeSafariDatabase(home.container() / "Safari/SafariTabs.db"), rows, "",
                     0);
    }

    tests::SafariHome home;
};

TEST_F(NamedProfiles, areThoseThatSafariListsWithTheirTitles) {
    list({"bookmarks|id=1|subtype=2|type=1|title=''|external_uuid='DefaultProfile'",
          std::string("bookmarks|id=2|subtype=2|type=1|title='Work'|external_uuid='") + work + "'",
          "bookmarks|id=3|type=1|title='a group'|external_uuid='G'"});
    const auto before = home.folder.snapshot();
    EXPECT_EQ(found(), Lines{std::string("Work ") + work});
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(NamedProfiles, thatOnlyHaveFoldersHaveNoTitle) {
    list(
        {std::string("bookmarks|id=2|subtype=2|type=1|title='Work'|external_uuid='") + work + "'"});
    home.folder.makeFolder("Library/Safari/Profiles/" + std::string(work));
    home.folder.makeFolder("Library/Safari/Profiles/no identifier");
    home.write("container:WebKit/WebsiteDataStore/ffffffff-0000-4000-8000-0123456789ab/salt",
               "salt");
    EXPECT_EQ(found(), (Lines{std::string("Work ") + work, std::string("(none) ") + old}));
}

TEST_F(NamedProfiles, areNoneWhereSafariMadeNone) {
    EXPECT_EQ(found(), Lines{});
}

TEST_F(NamedProfiles, areFoundByTheirFoldersWhereTheListCannotBeRead) {
    home.write("container:Safari/SafariTabs.db", "damaged");
    home.folder.makeFolder("Library/Safari/Profiles/" + std::string(work));
    EXPECT_EQ(found(), Lines{std::string("(none) ") + work});
}

TEST_F(NamedProfiles, whoseIdentifierIsNoneAreLeftOut) {
    list({"bookmarks|id=2|subtype=2|type=1|title='Bad'|external_uuid='../../Documents'"});
    const auto profiles = SafariNamedProfileReader(home.home).profiles();
    ASSERT_EQ(profiles.size(), 1U);
    EXPECT_NE(profiles[0]->leftOutReason(), std::nullopt);
    EXPECT_EQ(profiles[0]->folders(), std::nullopt);
}

}  // namespace
}  // namespace browsersweep

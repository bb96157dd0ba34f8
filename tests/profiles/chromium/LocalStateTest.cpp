#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/chromium/LocalState.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using Kind = DecodingError::Kind;

LocalState decodeLocalState(std::string_view text) {
    return LocalState::decode(tests::bytes(text));
}

/** The folders of the primary profiles. */
std::vector<std::string> primaries(std::string_view text) {
    const LocalState::Profile profile = decodeLocalState(text).profile;
    std::vector<std::string> folders;
    for (const auto& entry : profile.infoCache) {
        if (profile.isPrimary(entry)) {
            folders.push_back(entry.first);
        }
    }
    return folders;
}

TEST(LocalState, entriesComeInTheFilesOrderAndOtherKeysAreIgnored) {
    const auto state = decodeLocalState(R"({"browser": {}, "profile": {"metrics": 1, "info_cache": {
        "Profile 1": {"name": "Work", "is_consented_primary_account": false, "avatar": "x"},
        "Default": {"name": "Personal Büro", "is_consented_primary_account": true}},
        "last_active_profiles": ["Default", "Profile 1"]}})");
    EXPECT_EQ(state,
              (LocalState{{{{"Profile 1", {false, "Work"}}, {"Default", {true, "Personal Büro"}}},
                           {"Default", "Profile 1"}}}));
}

TEST(LocalState, everyFieldIsRead) {
    const LocalState::Profile profile = decodeLocalState(R"({"profile": {"info_cache": {
        "Default": {"is_consented_primary_account": true, "name": "Me"}},
        "last_active_profiles": ["Profile 1", "Default"]}})")
                                            .profile;
    ASSERT_EQ(profile.infoCache.size(), 1U);
    const auto& [folder, info] = profile.infoCache.front();
    EXPECT_EQ(folder, "Default");
    EXPECT_TRUE(info.isConsentedPrimaryAccount);
    EXPECT_EQ(info.name, "Me");
    EXPECT_EQ(profile.lastActiveProfiles, (std::vector<std::string>{"Profile 1", "Default"}));
}

TEST(LocalState, ofAFolderThatIsRecordedTwiceTheFirstEntryCounts) {
    EXPECT_EQ(decodeLocalState(R"({"profile": {"info_cache": {
        "a": {"name": "first", "is_consented_primary_account": false},
        "a": {"name": "second", "is_consented_primary_account": true}},
        "last_active_profiles": []}})"),
              (LocalState{{{{"a", {false, "first"}}}, {}}}));
}

TEST(LocalState, aConsentedProfileIsPrimaryWhateverWasLastActive) {
    EXPECT_EQ(primaries(R"({"profile": {"info_cache": {
        "a": {"name": "A", "is_consented_primary_account": true},
        "b": {"name": "B", "is_consented_primary_account": false}},
        "last_active_profiles": ["b"]}})"),
              (std::vector<std::string>{"a"}));
}

TEST(LocalState, everyConsentedProfileIsPrimary) {
    EXPECT_EQ(primaries(R"({"profile": {"info_cache": {
        "a": {"name": "A", "is_consented_primary_account": true},
        "b": {"name": "B", "is_consented_primary_account": true},
        "c": {"name": "C", "is_consented_primary_account": false}},
        "last_active_profiles": ["c"]}})"),
              (std::vector<std::string>{"a", "b"}));
}

TEST(LocalState, withoutConsentTheFirstLastActiveProfileIsPrimary) {
    EXPECT_EQ(primaries(R"({"profile": {"info_cache": {
        "a": {"name": "A", "is_consented_primary_account": false},
        "b": {"name": "B", "is_consented_primary_account": false}},
        "last_active_profiles": ["b", "a"]}})"),
              (std::vector<std::string>{"b"}));
}

TEST(LocalState, withoutAnyLastActiveProfileTheFirstEntryIsPrimary) {
    EXPECT_EQ(primaries(R"({"profile": {"info_cache": {
        "a": {"name": "A", "is_consented_primary_account": false},
        "b": {"name": "B", "is_consented_primary_account": false}},
        "last_active_profiles": []}})"),
              (std::vector<std::string>{"a"}));
}

TEST(LocalState, aLastActiveFolderThatIsNoEntryLeavesNonePrimary) {
    EXPECT_TRUE(primaries(R"({"profile": {"info_cache": {
        "a": {"name": "A", "is_consented_primary_account": false}},
        "last_active_profiles": ["gone", "a"]}})")
                    .empty());
    EXPECT_TRUE(primaries(R"({"profile": {"info_cache": {
        "a": {"name": "A", "is_consented_primary_account": false}},
        "last_active_profiles": ["A"]}})")
                    .empty());
}

TEST(LocalState, anEntryOfAnotherFileIsNotPrimaryWhereThereIsNone) {
    EXPECT_FALSE(LocalState::Profile().isPrimary({"a", {}}));
}

TEST(LocalState, aProfileIsNotConsentedToUnlessItSaysSo) {
    EXPECT_FALSE(LocalState::Profile::InfoCache{}.isConsentedPrimaryAccount);
}

TEST(LocalState, theMarksOfAllEntriesAreThoseOfEach) {
    const LocalState::Profile consented{{{"a", {false, "A"}}, {"b", {true, "B"}}}, {"a"}};
    EXPECT_EQ(consented.primaryMarks(), (std::vector<bool>{false, true}));
    const LocalState::Profile active{{{"a", {false, "A"}}, {"b", {false, "B"}}}, {"b"}};
    EXPECT_EQ(active.primaryMarks(), (std::vector<bool>{false, true}));
}

TEST(LocalState, anEmptyInfoCacheHasNoEntries) {
    EXPECT_EQ(decodeLocalState(R"({"profile": {"info_cache": {}, "last_active_profiles": ["x"]}})"),
              (LocalState{{{}, {"x"}}}));
}

TEST(LocalState, whatIsMissingOrOfAnotherTypeIsAnErrorWithItsPath) {
    struct Row {
        std::string_view text;
        Kind kind;
        CodingPath path;
    };
    const std::vector<Row> rows{
        {"", Kind::dataCorrupted, {}},
        {"[]", Kind::typeMismatch, {}},
        {"{}", Kind::keyNotFound, {}},
        {R"({"profile": null})", Kind::valueNotFound, {}},
        {R"({"profile": 7})", Kind::typeMismatch, {"profile"}},
        {R"({"profile": {"last_active_profiles": []}})", Kind::keyNotFound, {"profile"}},
        {R"({"profile": {"info_cache": {}}})", Kind::keyNotFound, {"profile"}},
        {R"({"profile": {"info_cache": [], "last_active_profiles": []}})",
         Kind::typeMismatch,
         {"profile", "info_cache"}},
        {R"({"profile": {"info_cache": {"D": {"name": "x"}}, "last_active_profiles": []}})",
         Kind::keyNotFound,
         {"profile", "info_cache", "D"}},
        {R"({"profile": {"info_cache": {"D": {"is_consented_primary_account": true}},
            "last_active_profiles": []}})",
         Kind::keyNotFound,
         {"profile", "info_cache", "D"}},
        {R"({"profile": {"info_cache": {"D": {"name": "x", "is_consented_primary_account": 1}},
            "last_active_profiles": []}})",
         Kind::typeMismatch,
         {"profile", "info_cache", "D", "is_consented_primary_account"}},
        {R"({"profile": {"info_cache": {"D": {"name": 1, "is_consented_primary_account": true}},
            "last_active_profiles": []}})",
         Kind::typeMismatch,
         {"profile", "info_cache", "D", "name"}},
        {R"({"profile": {"info_cache": {}, "last_active_profiles": [1]}})",
         Kind::typeMismatch,
         {"profile", "last_active_profiles"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        try {
            decodeLocalState(row.text);
            ADD_FAILURE() << "no error";
        } catch (const DecodingError& error) {
            EXPECT_EQ(error.kind(), row.kind);
            EXPECT_EQ(error.codingPath(), row.path);
        }
    }
}

}  // namespace
}  // namespace browsersweep

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using Bookmarks = std::vector<Bookmark>;

Bookmarks decodeBookmarks(std::string_view text) {
    return decodeChromiumBookmarks(tests::bytes(text));
}

Bookmark mark(std::optional<std::string> name, std::string_view url) {
    return {std::move(name), *URL::parse(url)};
}

/** The description of the error that decoding gives. */
std::string errorOf(std::string_view text) {
    try {
        decodeBookmarks(text);
    } catch (const DecodingError& error) {
        return error.description();
    }
    return "no error";
}

TEST(ChromiumBookmarks, severalFoldersGiveTheBookmarksOfAllInTheFilesOrder) {
    EXPECT_EQ(decodeBookmarks(R"({"checksum": "x", "roots": {
        "bookmark_bar": {"children": [
            {"name": "One", "type": "url", "url": "http://one.test/"},
            {"name": "Folder", "type": "folder", "children": [
                {"name": "Two", "url": "http://two.test/"}]}], "name": "Bar", "type": "folder"},
        "other": {"children": [{"name": "", "url": "http://three.test/"}], "name": "Other"},
        "synced": {"children": [], "name": "Mobile"}}, "version": 1})"),
              (Bookmarks{mark("One", "http://one.test/"), mark("Two", "http://two.test/"),
                         mark("", "http://three.test/")}));
}

TEST(ChromiumBookmarks, aNodeWithChildrenComesAfterThem) {
    EXPECT_EQ(
        decodeBookmarks(R"({"roots": {"r": {"url": "http://self.test/", "name": "Self",
        "children": [{"url": "http://child.test/"}]}}})"),
        (Bookmarks{mark(std::nullopt, "http://child.test/"), mark("Self", "http://self.test/")}));
}

TEST(ChromiumBookmarks, aNodeWhoseAddressDoesNotParseGivesItsChildrenAlone) {
    EXPECT_EQ(decodeBookmarks(R"({"roots": {"r": {"url": "not an address", "name": "x",
        "children": [{"url": "http://child.test/", "name": null}]}}})"),
              (Bookmarks{mark(std::nullopt, "http://child.test/")}));
}

TEST(ChromiumBookmarks, anObjectOfObjectsIsAGroupOfRoots) {
    EXPECT_EQ(decodeBookmarks(R"({"roots": {"group": {"inner": {"deeper": {
        "url": "http://deep.test/"}}, "empty": {}}}})"),
              (Bookmarks{mark(std::nullopt, "http://deep.test/")}));
}

TEST(ChromiumBookmarks, aGroupWithAMemberThatIsNoRootFallsBackToANode) {
    // "a" would be a root, but "b" can be neither: its "children" are no list.
    EXPECT_EQ(decodeBookmarks(R"({"roots": {"x": {"a": {"url": "http://a.test/"},
        "b": {"children": "text"}}}})"),
              Bookmarks{});
}

TEST(ChromiumBookmarks, aRootThatIsTextFailsTheWholeFile) {
    constexpr auto message = "Could not decode bookmarks root";
    EXPECT_EQ(errorOf(R"({"roots": {"good": {"url": "http://a.test/"}, "bad": "text"}})"), message);
    for (const std::string_view value :
         {"1", "null", "true", "[]", R"({"children": 1, "x": 2})", R"({"name": 1})",
          R"({"url": {}, "x": 1})", R"({"children": [1]})", R"({"children": [{"name": []}]})"}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(errorOf(R"({"roots": {"bad": )" + std::string(value) + "}}"), message);
    }
}

TEST(ChromiumBookmarks, theErrorTellsWhichRoot) {
    try {
        decodeBookmarks(R"({"roots": {"bad": "text"}})");
        FAIL() << "no error";
    } catch (const DecodingError& error) {
        EXPECT_EQ(error.kind(), DecodingError::Kind::dataCorrupted);
        EXPECT_EQ(error.codingPath(), (CodingPath{"roots", "bad"}));
    }
}

TEST(ChromiumBookmarks, withoutRootsThereIsNoFileOfThisFormat) {
    EXPECT_THROW(decodeBookmarks("{}"), DecodingError);
    EXPECT_THROW(decodeBookmarks(R"({"roots": []})"), DecodingError);
    EXPECT_THROW(decodeBookmarks(""), DecodingError);
    EXPECT_EQ(decodeBookmarks(R"({"roots": {}})"), Bookmarks{});
}

TEST(ChromiumBookmarks, deepNestingEndsInTheParsersError) {
    std::string text = R"({"roots": {"r": )";
    for (int level = 0; level < 100'000; ++level) {
        text += R"({"children": [)";
    }
    EXPECT_THROW(decodeBookmarks(text), DecodingError);
}

}  // namespace
}  // namespace browsersweep

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using Bookmarks = std::vector<ChromiumBookmarks::ChromiumBookmark>;
using Node = ChromiumBookmarks::Node;
using Roots = ChromiumBookmarks::Roots;

Bookmarks decodeBookmarks(std::string_view text) {
    return ChromiumBookmarks::decode(tests::bytes(text)).bookmarks();
}

ChromiumBookmarks::ChromiumBookmark mark(std::optional<std::string> name, std::string_view url) {
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

/** A root that is a node. */
std::string nodeOf(const std::string& object) {
    return R"({"roots": {"r": )" + object + "}}";
}

Node onlyNode(std::string_view text) {
    return std::get<Node>(ChromiumBookmarks::decode(tests::bytes(text)).roots().at(0).root.value);
}

TEST(ChromiumBookmarks, everyFieldOfANodeIsRead) {
    const Node node = onlyNode(nodeOf(R"({"name": "Folder", "url": "no address", "children": [
        {"name": "One"}, {"url": "http://two.test/"}]})"));
    EXPECT_EQ(node.name(), "Folder");
    EXPECT_EQ(node.url(), "no address");
    const auto children = node.children();
    ASSERT_TRUE(children && children->size() == 2);
    EXPECT_EQ(children->front().name(), "One");
    EXPECT_EQ(children->front().url(), std::nullopt);
    EXPECT_EQ(children->back().name(), std::nullopt);
    EXPECT_EQ(children->back().url(), "http://two.test/");
}

TEST(ChromiumBookmarks, whatANodeLacksOrHasAsNullIsAbsent) {
    for (const std::string object :
         {R"({"type": "folder"})", R"({"x": 1, "children": null, "name": null, "url": null})"}) {
        SCOPED_TRACE(object);
        const Node node = onlyNode(nodeOf(object));
        EXPECT_FALSE(node.children().has_value());
        EXPECT_FALSE(node.name().has_value());
        EXPECT_FALSE(node.url().has_value());
    }
    EXPECT_TRUE(onlyNode(nodeOf(R"({"children": []})")).children()->empty());
}

TEST(ChromiumBookmarks, aNodeStaysWhenTheFileItCameFromIsGone) {
    const auto children = onlyNode(nodeOf(R"({"children": [{"name": "kept"}]})")).children();
    EXPECT_EQ(children->front().name(), "kept");
}

TEST(ChromiumBookmarks, aRootIsAGroupOrANode) {
    const auto decoded = ChromiumBookmarks::decode(tests::bytes(R"({"roots": {
        "node": {"name": "n"}, "group": {"inner": {"name": "i"}, "empty": {}},
        "node": {"name": "of the same key"}}})"));
    const Roots& roots = decoded.roots();
    ASSERT_EQ(roots.size(), 2U);
    EXPECT_EQ(roots[0].key, "node");
    EXPECT_EQ(std::get<Node>(roots[0].root.value).name(), "n");
    EXPECT_EQ(roots[1].key, "group");
    const auto& group = std::get<Roots>(roots[1].root.value);
    ASSERT_EQ(group.size(), 2U);
    EXPECT_EQ(group[0].key, "inner");
    EXPECT_EQ(std::get<Node>(group[0].root.value).name(), "i");
    EXPECT_EQ(group[1].key, "empty");
    EXPECT_TRUE(std::get<Roots>(group[1].root.value).empty());
}

/** An object so many times in another one. */
std::string nested(int levels, std::string_view opening, std::string_view closing) {
    std::string text;
    for (int level = 0; level < levels; ++level) {
        text += opening;
    }
    for (int level = 0; level < levels; ++level) {
        text += closing;
    }
    return text;
}

TEST(ChromiumBookmarks, asDeepAsAParserGoesRootsAndNodesAreRead) {
    // Of 512 levels two are the file's own. A group takes one, a node with a list two.
    constexpr int groups = 509;
    constexpr int nodes = 255;
    const std::string group = R"({"g": )";
    const std::string mostGroups =
        nested(groups, group, "}").insert(group.size() * groups, R"({"url": "http://deep.test/"})");
    EXPECT_EQ(decodeBookmarks(R"({"roots": )" + mostGroups + "}"),
              Bookmarks{mark(std::nullopt, "http://deep.test/")});
    const std::string list = R"({"children": [)";
    const std::string end = R"(], "url": "http://deep.test/"})";
    EXPECT_EQ(decodeBookmarks(nodeOf(nested(nodes, list, end))).size(), std::size_t{nodes});
    EXPECT_NE(errorOf(nodeOf(nested(nodes + 1, list, end))).find("too many nested"),
              std::string::npos);
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

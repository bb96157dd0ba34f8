#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/safari/SafariBookmarks.h"

#include "tests/support/Bytes.h"
#include "tests/support/PropertyLists.h"

namespace browsersweep {
namespace {

using tests::dictionary;
using tests::text;

PropertyList folder(PropertyList::Array children) {
    return dictionary({{"WebBookmarkType", text("WebBookmarkTypeList")},
                       {"Title", text("Folder")},
                       {"Children", PropertyList::array(std::move(children))}});
}

PropertyList leaf(const std::string& title, const std::string& address) {
    return dictionary({{"WebBookmarkType", text("WebBookmarkTypeLeaf")},
                       {"URLString", text(address)},
                       {"URIDictionary", dictionary({{"title", text(title)}})}});
}

std::vector<Bookmark> bookmarks(const PropertyList& root) {
    return SafariBookmarks::decode(root.binaryData()).bookmarks();
}

Bookmark bookmark(std::optional<std::string> name, const std::string& address) {
    return {std::move(name), URL::parse(address).value()};
}

TEST(SafariBookmarks, theyComeDepthFirstInTheFilesOrder) {
    const PropertyList root = folder({
        leaf("One", "https://one.example/"),
        folder({leaf("Two", "https://two.example/"),
                folder({leaf("Three", "https://three.example/")}),
                leaf("Four", "https://four.example/")}),
        leaf("Five", "https://five.example/"),
    });
    const std::vector<Bookmark> expected = {
        bookmark("One", "https://one.example/"),     bookmark("Two", "https://two.example/"),
        bookmark("Three", "https://three.example/"), bookmark("Four", "https://four.example/"),
        bookmark("Five", "https://five.example/"),
    };
    EXPECT_EQ(expected, bookmarks(root));
}

TEST(SafariBookmarks, whatLiesBelowAChildComesBeforeTheChildItself) {
    const PropertyList root = folder(
        {dictionary({{"URLString", text("https://parent.example/")},
                     {"Children", PropertyList::array({leaf("C", "https://c.example/")})}})});
    const std::vector<Bookmark> expected = {bookmark("C", "https://c.example/"),
                                            bookmark(std::nullopt, "https://parent.example/")};
    EXPECT_EQ(expected, bookmarks(root));
}

TEST(SafariBookmarks, theFieldsOfTheFileCanBeRead) {
    const auto file = SafariBookmarks::decode(
        folder({leaf("One", "one:"), folder({}), dictionary({{"URIDictionary", dictionary({})}})})
            .binaryData());
    const auto children = file.children();
    ASSERT_TRUE(children);
    ASSERT_EQ(children->size(), 3U);
    EXPECT_EQ((*children)[0].urlString(), "one:");
    EXPECT_EQ((*children)[0].uriDictionary().value().title, "One");
    EXPECT_FALSE((*children)[0].children());
    EXPECT_EQ((*children)[1].urlString(), std::nullopt);
    EXPECT_FALSE((*children)[1].uriDictionary());
    EXPECT_EQ((*children)[1].children().value().size(), 0U);
    EXPECT_EQ((*children)[2].uriDictionary().value().title, std::nullopt);
    EXPECT_FALSE(SafariBookmarks::decode(dictionary({}).binaryData()).children());
}

TEST(SafariBookmarks, theRootItselfIsNoBookmark) {
    EXPECT_EQ(std::vector<Bookmark>{}, bookmarks(leaf("Root", "https://root.example/")));
}

TEST(SafariBookmarks, withoutChildrenThereAreNone) {
    EXPECT_EQ(std::vector<Bookmark>{}, bookmarks(dictionary({})));
    EXPECT_EQ(std::vector<Bookmark>{}, bookmarks(folder({})));
    EXPECT_EQ(std::vector<Bookmark>{}, bookmarks(folder({dictionary({})})));
}

TEST(SafariBookmarks, aLeafWithoutATitleHasNoName) {
    const PropertyList root = folder({
        dictionary({{"URLString", text("https://a.example/")}, {"URIDictionary", dictionary({})}}),
        dictionary({{"URLString", text("https://b.example/")}}),
        leaf("", "https://c.example/"),
    });
    const std::vector<Bookmark> expected = {bookmark(std::nullopt, "https://a.example/"),
                                            bookmark(std::nullopt, "https://b.example/"),
                                            bookmark("", "https://c.example/")};
    EXPECT_EQ(expected, bookmarks(root));
}

TEST(SafariBookmarks, anAddressThatDoesNotParseGivesOnlyWhatIsBelowIt) {
    const PropertyList root =
        folder({dictionary({{"URLString", text("javascript:(function(){alert(\"x\")})()")},
                            {"Children", PropertyList::array({leaf("C", "https://c.example/")})}}),
                leaf("Empty", "")});
    EXPECT_EQ(std::vector<Bookmark>{bookmark("C", "https://c.example/")}, bookmarks(root));
}

TEST(SafariBookmarks, bothFormsOfAPropertyListAreRead) {
    const std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\"><dict><key>Children</key><array><dict>"
        "<key>URIDictionary</key><dict><key>title</key><string>One</string></dict>"
        "<key>URLString</key><string>https://one.example/?a=1&amp;b=2</string>"
        "</dict></array><key>WebBookmarkFileVersion</key><integer>1</integer></dict></plist>\n";
    const std::vector<Bookmark> expected = {bookmark("One", "https://one.example/?a=1&b=2")};
    EXPECT_EQ(expected, SafariBookmarks::decode(tests::bytes(xml)).bookmarks());
    EXPECT_EQ(expected, bookmarks(folder({leaf("One", "https://one.example/?a=1&b=2")})));
}

struct ErrorCase {
    const char* name;
    PropertyList root;
    CodingPath path;
    const char* needed;
};

TEST(SafariBookmarks, aValueOfTheWrongTypeIsAnErrorWithItsPath) {
    const PropertyList one = PropertyList::integer(1);
    const PropertyList badTitle = dictionary({{"URIDictionary", dictionary({{"title", one}})}});
    const std::vector<ErrorCase> cases = {
        {"root", PropertyList::array({}), {}, "dictionary"},
        {"children", dictionary({{"Children", one}}), {"Children"}, "list"},
        {"child", folder({text("a")}), {"Children", "Index 0"}, "dictionary"},
        {"address",
         folder({dictionary({}), dictionary({{"URLString", one}})}),
         {"Children", "Index 1", "URLString"},
         "text"},
        {"dictionary of the title",
         folder({dictionary({{"URIDictionary", text("a")}})}),
         {"Children", "Index 0", "URIDictionary"},
         "dictionary"},
        {"title",
         folder({folder({badTitle})}),
         {"Children", "Index 0", "Children", "Index 0", "URIDictionary", "title"},
         "text"},
    };
    for (const ErrorCase& row : cases) {
        SCOPED_TRACE(row.name);
        try {
            bookmarks(row.root);
            ADD_FAILURE() << "accepted";
        } catch (const DecodingError& error) {
            EXPECT_EQ(DecodingError::Kind::typeMismatch, error.kind());
            EXPECT_EQ(row.path, error.codingPath());
            EXPECT_EQ("the value is no " + std::string(row.needed), error.description());
        }
    }
}

TEST(SafariBookmarks, bytesThatAreNoPropertyListAreAnError) {
    for (const char* contents : {"", "two words", "<plist>", "bplist00"}) {
        SCOPED_TRACE(contents);
        try {
            SafariBookmarks::decode(tests::bytes(contents));
            ADD_FAILURE() << "accepted";
        } catch (const DecodingError& error) {
            EXPECT_EQ(DecodingError::Kind::dataCorrupted, error.kind());
        }
    }
}

}  // namespace
}  // namespace browsersweep

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/chromium/ChromiumPreferences.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using Lines = std::vector<std::string>;

std::string preferences(std::string_view notifications) {
    return R"({"other": 1, "profile": {"content_settings": {"exceptions": {"notifications": )" +
           std::string(notifications) + "}}}}";
}

ChromiumPreferences decodePreferences(std::string_view text) {
    return ChromiumPreferences::decode(tests::bytes(text));
}

Lines sites(std::string_view notifications) {
    Lines texts;
    for (const URL& site : decodePreferences(preferences(notifications)).allowedSites()) {
        texts.push_back(site.absoluteString());
    }
    return texts;
}

TEST(ChromiumPreferences, everyEntryIsReadInTheFilesOrder) {
    using Exceptions = ChromiumPreferences::Profile::ContentSettings::CSException;
    const auto decoded = decodePreferences(preferences(R"({
        "https://b.test,*": {"setting": 2, "last_modified": "13300000000000000", "other": []},
        "https://a.test,*": {"setting": -1, "last_modified": ""},
        "https://b.test,*": {"setting": 1, "last_modified": "of the same pattern"}})"));
    EXPECT_EQ(decoded.profile.contentSettings.exceptions.notifications,
              (std::vector<Exceptions::Entry>{{"https://b.test,*", {2, "13300000000000000"}},
                                              {"https://a.test,*", {-1, ""}}}));
}

TEST(ChromiumPreferences, aValueThatIsMadeAnewIsNoPermission) {
    using Exceptions = ChromiumPreferences::Profile::ContentSettings::CSException;
    EXPECT_EQ(Exceptions::NotificationValue(), (Exceptions::NotificationValue{0, ""}));
}

TEST(ChromiumPreferences, onlyAllowedSitesCount) {
    EXPECT_EQ(sites(R"({
        "https://yes.test:443,*": {"setting": 1, "last_modified": "1"},
        "https://no.test:443,*": {"setting": 2, "last_modified": "1"},
        "https://ask.test:443,*": {"setting": 0, "last_modified": "1"},
        "https://float.test,*": {"setting": 1.0, "last_modified": ""}})"),
              (Lines{"https://yes.test:443", "https://float.test"}));
}

TEST(ChromiumPreferences, keysAreSplitAtCommasWithoutAsterisksAndEmptyPieces) {
    EXPECT_EQ(sites(R"({"*,https://a.test": {"setting": 1, "last_modified": "1"}})"),
              Lines{"https://a.test"});
    EXPECT_EQ(sites(R"({",,https://a.test,,not one,[*.]b.test,": {"setting": 1,
        "last_modified": "1"}, "": {"setting": 1, "last_modified": "1"},
        "*": {"setting": 1, "last_modified": "1"}})"),
              (Lines{"https://a.test", "[*.]b.test"}));
}

TEST(ChromiumPreferences, oneEntryThatLacksAKeyFailsTheWholeFile) {
    for (const std::string_view entry :
         {R"({"setting": 1})", R"({"last_modified": "1"})",
          R"({"setting": "1", "last_modified": "1"})", R"({"setting": 1.5, "last_modified": "1"})",
          R"({"setting": 1, "last_modified": 1})", R"({"setting": 1, "last_modified": null})",
          "1"}) {
        SCOPED_TRACE(entry);
        EXPECT_THROW(sites(R"({"https://good.test": {"setting": 1, "last_modified": "1"}, "x": )" +
                           std::string(entry) + "}"),
                     DecodingError);
    }
}

TEST(ChromiumPreferences, aFileWithoutTheNotificationsFails) {
    for (const std::string_view text :
         {"", "{}", R"({"profile": {}})", R"({"profile": {"content_settings": {}}})",
          R"({"profile": {"content_settings": {"exceptions": {}}}})",
          R"({"profile": {"content_settings": {"exceptions": {"notifications": []}}}})"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(decodePreferences(text), DecodingError);
    }
}

TEST(ChromiumPreferences, errorsTellTheWholePath) {
    const std::vector<std::pair<std::string, std::string>> rows{
        {R"({"https://a.test": {"setting": true, "last_modified": "1"}})", "setting"},
        {R"({"https://a.test": {"setting": 1, "last_modified": 1}})", "last_modified"}};
    for (const auto& [notifications, key] : rows) {
        try {
            sites(notifications);
            FAIL() << "no error";
        } catch (const DecodingError& error) {
            EXPECT_EQ(error.codingPath(), (CodingPath{"profile", "content_settings", "exceptions",
                                                      "notifications", "https://a.test", key}));
        }
    }
}

}  // namespace
}  // namespace browsersweep

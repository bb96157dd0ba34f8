#include <string>

#include <gtest/gtest.h>

#include "cli/JSONReport.h"

namespace browsersweep::cli {
namespace {

TEST(JSONReport, keepsTheKeysInTheOrderOfTheContract) {
    SizesReport report;
    report.measure = Measure::removed;
    report.total = {{3, false}, {40960, true}};
    BrowserSizes row{};
    row.browser = Browser::opera;
    row.size = report.total;
    CategorySize failed{};
    failed.category = CleanableDataCategory::formData;
    failed.error = "why";
    failed.items.push_back(
        {"a", std::nullopt, "/f", ItemVerdict::held, "rows are left", std::nullopt, 512, true});
    row.categories.push_back(failed);
    ProfileSizes profile{{"a", true, std::nullopt, false}, {failed}};
    profile.freedBytes = 512;
    row.profiles.push_back(profile);
    row.leftOut.push_back({{std::nullopt, false, ".."}, "elsewhere"});
    report.browsers.push_back(row);
    EXPECT_EQ(jsonText(report), R"({
  "dryRun": false,
  "total": {
    "itemCount": {
      "value": 3,
      "isApproximate": false
    },
    "byteCount": {
      "value": 40960,
      "isApproximate": true
    }
  },
  "browsers": [
    {
      "browser": "opera",
      "error": null,
      "removed": {
        "itemCount": {
          "value": 3,
          "isApproximate": false
        },
        "byteCount": {
          "value": 40960,
          "isApproximate": true
        }
      },
      "freedBytes": 0,
      "requiresClosedBrowserToClean": false,
      "leftOut": [
        {
          "name": null,
          "folder": "..",
          "why": "elsewhere"
        }
      ],
      "categories": [
        {
          "category": "formData",
          "error": "why",
          "removed": null,
          "freedBytes": 0,
          "requiresClosedBrowserToClean": false,
          "items": [
            {
              "profile": "a",
              "folder": null,
              "what": "/f",
              "verdict": "held",
              "detail": "rows are left",
              "removed": null,
              "freedBytes": 512
            }
          ]
        }
      ],
      "profiles": [
        {
          "name": "a",
          "isPrimary": true,
          "folder": null,
          "removed": null,
          "freedBytes": 512,
          "categories": [
            {
              "category": "formData",
              "error": "why",
              "removed": null,
              "freedBytes": 0
            }
          ]
        }
      ]
    }
  ]
}
)");
}

TEST(JSONReport, replacesBytesThatAreNoUTF8) {
    NotificationsReport report;
    report.browsers.push_back({Browser::opera, {}, {}});
    report.browsers.back().profiles.push_back({{"n\xFF", true}, {}, {{"https://é", "/p\xFF"}}});
    EXPECT_EQ(jsonText(report), R"({
  "browsers": [
    {
      "browser": "opera",
      "error": null,
      "leftOut": [],
      "profiles": [
        {
          "name": "n�",
          "isPrimary": true,
          "error": null,
          "subscriptions": [
            {
              "sourceURL": "https://é",
              "store": "/p�"
            }
          ]
        }
      ]
    }
  ]
}
)");
}

TEST(JSONReport, listsThatAreEmptyStayLists) {
    EXPECT_EQ(jsonText(BookmarksReport{}), "{\n  \"browsers\": []\n}\n");
    ProfilesReport report;
    report.browsers.push_back({Browser::safari, "why", {}});
    EXPECT_EQ(jsonText(report),
              "{\n  \"browsers\": [\n    {\n      \"browser\": \"safari\",\n"
              "      \"error\": \"why\",\n      \"leftOut\": [],\n      \"profiles\": []\n    }\n  "
              "]\n}\n");
}

}  // namespace
}  // namespace browsersweep::cli

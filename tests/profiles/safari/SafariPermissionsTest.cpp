#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/profiles/safari/internal/SafariPermissions.h"

#include "tests/support/PropertyLists.h"

namespace browsersweep {
namespace {

using tests::dictionary;
using tests::text;

PropertyList allowing(PropertyList::Array domains) {
    return dictionary({{"Date Added", PropertyList::date(dateFromReferenceSeconds(1))},
                       {"Allowed Domains", PropertyList::array(std::move(domains))}});
}

std::vector<std::string> sites(const PropertyList& permissions) {
    std::vector<std::string> addresses;
    for (const URL& site : allowedSites(permissions)) {
        addresses.push_back(site.absoluteString());
    }
    return addresses;
}

TEST(SafariPermissions, theDomainsOfEveryDictionaryAreAllowedInOrder) {
    const PropertyList permissions = dictionary(
        {{"https://b.example", allowing({text("https://b.example"), text("https://b2.example")})},
         {"https://a.example", allowing({text("https://a.example")})}});
    EXPECT_EQ(
        (std::vector<std::string>{"https://b.example", "https://b2.example", "https://a.example"}),
        sites(permissions));
}

TEST(SafariPermissions, valuesOfOtherShapesAreSkipped) {
    const PropertyList permissions = dictionary({
        {"number", PropertyList::integer(1)},
        {"list", PropertyList::array({text("https://list.example")})},
        {"without", dictionary({{"Permission", PropertyList::boolean(true)}})},
        {"text", dictionary({{"Allowed Domains", text("https://text.example")}})},
        {"mixed", allowing({text("https://mixed.example"), PropertyList::integer(1)})},
        {"empty", allowing({})},
        {"good", allowing({text("https://good.example")})},
    });
    EXPECT_EQ(std::vector<std::string>{"https://good.example"}, sites(permissions));
}

TEST(SafariPermissions, domainsThatDoNotParseAreSkipped) {
    const PropertyList permissions = dictionary(
        {{"a", allowing({text(""), text("https://two words.example"), text("c.example")})}});
    EXPECT_EQ(std::vector<std::string>{"c.example"}, sites(permissions));
}

TEST(SafariPermissions, whatIsNoDictionaryAllowsNothing) {
    EXPECT_EQ(std::vector<std::string>{}, sites(PropertyList::array({allowing({text("a")})})));
    EXPECT_EQ(std::vector<std::string>{}, sites(text("a")));
}

}  // namespace
}  // namespace browsersweep

#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {
namespace {

struct Row {
    SiteForm form;
    std::string_view text;
    std::vector<std::string> hosts;
};

TEST(SiteForm, namesTheHostsOfEachForm) {
    using Form = SiteForm;
    const std::vector<Row> rows{
        {Form::address, "https://www.example.com/a", {"www.example.com"}},
        {Form::address, "HTTPS://Example.COM", {"example.com"}},
        {Form::address, "blob:https://a.com/0-1-2", {"a.com"}},
        {Form::address, "filesystem:http://a.com:8080/temporary/", {"a.com"}},
        {Form::address, "view-source:https://a.com/", {"a.com"}},
        {Form::address, "https://a.com\\b", {"a.com"}},
        {Form::address, "https://b.com@a.com/", {"a.com"}},
        {Form::address, "data:text/html,https://a.com/", {}},
        {Form::host, ".example.com", {"example.com"}},
        {Form::host, "example.com:8080", {"example.com"}},
        {Form::host, "[::1]:8080", {"::1"}},
        {Form::host, "2001:db8::1", {"2001:db8::1"}},
        {Form::reversedHost, "moc.elpmaxe.www.", {"www.example.com"}},
        {Form::reversedHost, "moc.elpmaxe.www.:https:443", {"www.example.com"}},
        {Form::storageKey, "https://a.com/", {"a.com"}},
        {Form::storageKey, "https://a.com/^0https://b.com", {"a.com", "b.com"}},
        {Form::storageKey, "https://a.com/^31", {"a.com"}},
        {Form::storageKey, "chrome-extension://abc/", {}},
        {Form::storageKey, "chrome-extension://abc/^0https://b.com", {"b.com"}},
        {Form::originIdentifier, "https_www.example.com_0", {"www.example.com"}},
        {Form::originIdentifier, "http_under_score.com_8080", {"under_score.com"}},
        {Form::originIdentifier, "chrome-extension_abc_0", {}},
        {Form::originIdentifier, "https_0", {}},
        {Form::contentSettingsKey, "https://a.com:443,*", {"a.com"}},
        {Form::contentSettingsKey, "https://a.com:443,https://b.com", {"a.com", "b.com"}},
        {Form::contentSettingsKey, "[*.]a.com,*", {"a.com"}},
        {Form::contentSettingsKey, "https://[*.]a.com,*", {"a.com"}},
        {Form::contentSettingsKey, "*,*", {}},
        {Form::contentSettingsKey, "chrome-extension://abc/,*", {}},
        {Form::networkKey,
         "1/0/_dk_https://b.com https://c.com https://a.com/x",
         {"b.com", "c.com", "a.com"}},
        {Form::networkKey, "_keyhttps://a.com/x.js \nhttps://b.com/", {"a.com", "b.com"}},
        {Form::firefoxOrigin, "https://a.com^partitionKey=%28https%2Cb.com%29", {"a.com", "b.com"}},
        {Form::firefoxOrigin, "https://a.com:8080^userContextId=1", {"a.com"}},
        {Form::firefoxOrigin, "moz-extension://1-2^userContextId=4", {}},
        {Form::firefoxFolder, "https+++www.a.com", {"www.a.com"}},
        {Form::firefoxFolder,
         "http+++a.com+8080^userContextId=1&partitionKey=%28http%2Cb.com%29",
         {"a.com", "b.com"}},
        {Form::firefoxFolder, "http+++[++1]+8080", {"::1"}},
        {Form::firefoxFolder, "moz-extension+++1-2^userContextId=4", {}},
        {Form::firefoxFolder, "chrome", {}},
        {Form::originAttributes, "^partitionKey=%28https%2Cb.com%29", {"b.com"}},
        {Form::originAttributes, "^partitionKey=%28https%2Cb.com%2C8443%29", {"b.com"}},
        {Form::originAttributes, "^userContextId=1", {}},
        {Form::originAttributes, "^firstPartyDomain=b.com", {"b.com"}},
        {Form::originAttributes, "^firstPartyDomain=b.com&userContextId=1", {"b.com"}},
        {Form::originAttributes, "^firstPartyDomain=%28https%2Cb.com%29", {"b.com"}},
        {Form::firefoxOrigin, "https://a.com^firstPartyDomain=b.com", {"a.com", "b.com"}},
        {Form::firefoxFolder, "https+++a.com^firstPartyDomain=b.com", {"a.com", "b.com"}},
        {Form::originAttributes, "^firstPartyDomain=[::1]", {"::1"}},
        {Form::originAttributes, "^firstPartyDomain=%5B%3A%3A1%5D&userContextId=1", {"::1"}},
        {Form::originAttributes, "^partitionKey=%28http%2C%5B%3A%3A1%5D%2C8443%29", {"::1"}},
        {Form::originAttributes, "^firstPartyDomain=[::1", {}},
        {Form::originAttributes, "^firstPartyDomain=%5B%5D", {}},
        {Form::originAttributes, "^firstPartyDomain=b.com::|n:y:", {"b.com"}},
        {Form::originAttributes,
         "^firstPartyDomain=about.ef2a7dd5-93bc-417f-a698-142c3116864f.mozilla",
         {}},
        {Form::originAttributes, "^firstPartyDomain=mozilla.org", {"mozilla.org"}},
        {Form::originAttributes, "", {}},
    };
    for (const auto& [form, text, hosts] : rows) {
        EXPECT_EQ(hostsIn(form, text), hosts) << static_cast<int>(form) << ' ' << text;
    }
}

TEST(SiteForm, namesAHostOnce) {
    EXPECT_EQ(hostsIn(SiteForm::storageKey, "https://a.com/^0https://a.com"),
              std::vector<std::string>{"a.com"});
}

TEST(SiteForm, findsNothingInWhatIsBroken) {
    constexpr std::string_view broken[] = {"",
                                           "^",
                                           "^^",
                                           "[",
                                           "_",
                                           "__",
                                           "https://",
                                           "://",
                                           ",",
                                           "+++",
                                           "https+++",
                                           "https+++[",
                                           "https://[",
                                           "\xFF",
                                           "partitionKey=%28",
                                           "^partitionKey=%28https%2C",
                                           "^firstPartyDomain=",
                                           "^firstPartyDomain=%28https"};
    for (const std::string_view text : broken) {
        for (int form = 0; form <= static_cast<int>(SiteForm::originAttributes); ++form) {
            const auto hosts = hostsIn(static_cast<SiteForm>(form), text);
            for (const std::string& host : hosts) {
                EXPECT_EQ(host, plainHost(host)) << form << ' ' << text;
            }
        }
    }
}

TEST(SiteForm, aHostOrAddressIsEitherOfTheTwo) {
    using Hosts = std::vector<std::string>;
    EXPECT_EQ(hostsIn(SiteForm::hostOrAddress, "www.a.test:8080"), Hosts{"www.a.test"});
    EXPECT_EQ(hostsIn(SiteForm::hostOrAddress, "https://www.a.test:8080/b"), Hosts{"www.a.test"});
    EXPECT_EQ(hostsIn(SiteForm::hostOrAddress, "chrome-extension://abc/"), Hosts{});
    EXPECT_EQ(hostsIn(SiteForm::message,
                      "\x0a\x06"
                      "a.test"),
              Hosts{"a.test"});
}

}  // namespace
}  // namespace browsersweep

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/MessageHosts.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

std::string field(char tag, const std::string& content) {
    return std::string(1, tag) + static_cast<char>(content.size()) + content;
}

TEST(MessageHosts, areFoundAmongTheTextsAtAnyDepth) {
    const std::string message =
        field('\x0a', "www.one.test") + std::string("\x10\x96\x01", 3) +
        field('\x1a', field('\x22', "https://two.test/page") + field('\x2a', "a word")) +
        std::string("\x21", 1) + std::string(8, '.') + std::string("\x2d....", 5) +
        field('\x32', "one.test");
    EXPECT_EQ(hostsInMessage(message), (Hosts{"one.test", "two.test", "www.one.test"}));
}

TEST(MessageHosts, aMessageThatLooksLikeATextIsOneTheLess) {
    const std::string address = "https://www.a-long-name-of-a-host.test/path";
    EXPECT_EQ(hostsInMessage(field('\x0a', field('\x22', address))),
              Hosts{"www.a-long-name-of-a-host.test"});
}

TEST(MessageHosts, areNoWordsNumbersAndOtherBytes) {
    EXPECT_EQ(hostsInMessage({}), Hosts{});
    EXPECT_EQ(hostsInMessage(field('\x0a', "word") + field('\x12', "chrome://a.b/")), Hosts{});
}

TEST(MessageHosts, areNotReadOutOfBytesThatHappenToBeginLikeAMessage) {
    const std::string digest = field('\x0a', "mu.t") + "\xff\x07\x81";
    EXPECT_EQ(hostsInMessage(field('\x12', digest)), Hosts{});
}

TEST(MessageHosts, areNoSingleLabelsOutsideOfAddresses) {
    EXPECT_EQ(hostsInMessage(field('\x0a', "www:80") + field('\x12', "http://intranet/")),
              Hosts{"intranet"});
}

TEST(MessageHosts, whatFollowsADamagedPlaceIsNotLookedAt) {
    const std::string good = field('\x0a', "one.test");
    for (const std::string& damage :
         {std::string("\x0b"), std::string("\x12\x7f") + "two.test", std::string("\x08\xff"),
          std::string("\x09two"), std::string(12, '\xff')}) {
        EXPECT_EQ(hostsInMessage(good + damage), Hosts{"one.test"});
    }
}

TEST(MessageHosts, aMessageAsDeepAsItIsLongIsLeftAtSomeDepth) {
    std::string message = field('\x0a', "one.test");
    for (int depth = 0; depth < 30; ++depth) {
        message = field('\x0a', message);
    }
    EXPECT_EQ(hostsInMessage(message), Hosts{});
}

}  // namespace
}  // namespace browsersweep

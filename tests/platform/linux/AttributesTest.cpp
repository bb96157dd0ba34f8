#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include "browsersweep/platform/FileManager.h"

#include "tests/support/Bytes.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::bytes;

constexpr const char* accessList = "system.posix_acl_access";
constexpr const char* defaultList = "system.posix_acl_default";

/** One line of an access control list as the kernel stores it. */
struct Line {
    std::uint16_t tag;
    std::uint16_t rights;
    std::uint32_t user;
};

constexpr std::uint32_t nobodyInParticular = 0xFFFFFFFF;

/** A list that lets one more user read. */
std::string listWith(std::uint32_t user) {
    constexpr std::uint32_t version = 2;
    const std::array<Line, 5> lines{{{0x01, 6, nobodyInParticular},
                                     {0x02, 4, user},
                                     {0x04, 4, nobodyInParticular},
                                     {0x10, 4, nobodyInParticular},
                                     {0x20, 0, nobodyInParticular}}};
    std::string list(reinterpret_cast<const char*>(&version), sizeof version);
    list.append(reinterpret_cast<const char*>(lines.data()), sizeof lines);
    return list;
}

bool give(const fs::path& path, const char* name, const std::string& value) {
    return ::setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

std::string valueOf(const fs::path& path, const char* name) {
    std::array<char, 4096> value{};
    const auto length = ::getxattr(path.c_str(), name, value.data(), value.size());
    return length < 0 ? "(none)" : std::string(value.data(), static_cast<std::size_t>(length));
}

class Attributes : public testing::Test {
protected:
    void SetUp() override {
        if (!give(file, "user.note", "kept") || !give(file, accessList, listWith(1234))) {
            GTEST_SKIP() << "this file system keeps no attributes or no lists";
        }
    }

    tests::TemporaryFolder folder;
    std::shared_ptr<const FileManager> manager = FileManager::forHome(folder.path());
    fs::path file = folder.write("file", "old");
};

TEST_F(Attributes, replacingAFileKeepsItsListAndItsAttributes) {
    ASSERT_TRUE(give(file, "user.large", std::string(2000, 'x')));
    manager->replace(file, bytes("new"));
    EXPECT_EQ(tests::readFile(file), "new");
    EXPECT_EQ(valueOf(file, "user.note"), "kept");
    EXPECT_EQ(valueOf(file, "user.large"), std::string(2000, 'x'));
    EXPECT_EQ(valueOf(file, accessList), listWith(1234));
}

TEST_F(Attributes, aFileWithoutAListGetsNoneFromItsFolder) {
    const fs::path plain = folder.write("sub/plain", "old");
    fs::permissions(plain, fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_TRUE(give(folder / "sub", defaultList, listWith(4321)));
    manager->replace(plain, bytes("new"));
    EXPECT_EQ(valueOf(plain, accessList), "(none)");
    EXPECT_EQ(fs::status(plain).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

}  // namespace
}  // namespace browsersweep

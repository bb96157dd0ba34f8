#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "fuzz/targets/Targets.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using fuzz::Target;

Bytes contentsOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/** Runs a target on every file of one of its folders. Returns how many there were. */
std::size_t runOnFolder(const Target& target, const fs::path& folder) {
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        SCOPED_TRACE(entry.path().string());
        EXPECT_NO_THROW(target.run(contentsOf(entry.path())));
        ++count;
    }
    return count;
}

class FuzzTargets : public testing::TestWithParam<Target> {};

TEST_P(FuzzTargets, keepTheirRulesOnEverySeed) {
    const fs::path folder = fs::path(BROWSERSWEEP_FUZZ_FOLDER) / "seeds" / GetParam().name;
    EXPECT_GT(runOnFolder(GetParam(), folder), 0U);
}

TEST_P(FuzzTargets, keepTheirRulesOnEverySeedCutShortOrWithOneByteChanged) {
    const fs::path folder = fs::path(BROWSERSWEEP_FUZZ_FOLDER) / "seeds" / GetParam().name;
    for (const auto& entry : fs::directory_iterator(folder)) {
        SCOPED_TRACE(entry.path().string());
        const Bytes whole = contentsOf(entry.path());
        for (std::size_t place = 0; place < whole.size(); ++place) {
            SCOPED_TRACE(place);
            Bytes changed = whole;
            changed[place] ^= 0x81U;
            EXPECT_NO_THROW(GetParam().run(changed));
            EXPECT_NO_THROW(GetParam().run(BytesView(whole).first(place)));
        }
    }
}

TEST_P(FuzzTargets, keepTheirRulesOnInputsThatOnceBrokeThem) {
    const fs::path folder = fs::path(BROWSERSWEEP_FUZZ_FOLDER) / "regressions" / GetParam().name;
    if (fs::is_directory(folder)) {
        runOnFolder(GetParam(), folder);
    }
}

INSTANTIATE_TEST_SUITE_P(All, FuzzTargets,
                         testing::ValuesIn(fuzz::allTargets().begin(), fuzz::allTargets().end()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace browsersweep

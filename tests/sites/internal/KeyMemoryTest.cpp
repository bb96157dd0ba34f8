#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/KeyMemory.h"

namespace browsersweep {
namespace {

using Key = KeyMemory::Key;

class KeyMemoryTest : public testing::Test {
protected:
    /** What the memory says of a file that holds a key, and whether it had to read it. */
    struct Answer {
        Key key;
        bool wasRead = false;
        friend bool operator==(const Answer&, const Answer&) = default;
    };

    Answer ask(const FolderEntry& listed, const Key& held) {
        Answer answer;
        answer.key = memory.keyOf(listed, now, [&] {
            answer.wasRead = true;
            return held;
        });
        return answer;
    }

    const Date now = dateFromReferenceSeconds(1000);
    const FolderEntry file{"name", FolderEntry::Kind::file,      10, dateFromReferenceSeconds(900),
                           7,      dateFromReferenceSeconds(900)};
    KeyMemory memory;
};

TEST_F(KeyMemoryTest, anUnchangedFileIsReadOnceAlsoOneWithoutAKey) {
    FolderEntry damaged = file;
    damaged.number = 8;
    EXPECT_EQ(ask(file, "key"), (Answer{"key", true}));
    EXPECT_EQ(ask(damaged, std::nullopt), (Answer{std::nullopt, true}));
    EXPECT_EQ(ask(file, "other"), (Answer{"key", false}));
    EXPECT_EQ(ask(damaged, "other"), (Answer{std::nullopt, false}));
}

TEST_F(KeyMemoryTest, keysOfManyFilesAreToldApart) {
    const std::vector<Key> keys{"first", "", std::nullopt, "fourth\0th"};
    std::vector<FolderEntry> files(keys.size(), file);
    for (std::size_t index = 0; index < keys.size(); ++index) {
        files[index].number += index;
        ask(files[index], keys[index]);
    }
    for (std::size_t index = 0; index < keys.size(); ++index) {
        EXPECT_EQ(ask(files[index], "other"), (Answer{keys[index], false}));
    }
}

TEST_F(KeyMemoryTest, aFileThatDiffersInAnythingThatIsListedIsReadAgain) {
    const std::vector<std::function<void(FolderEntry&)>> changes{
        [](FolderEntry& entry) { entry.size = 11; },
        [](FolderEntry& entry) { entry.modified = dateFromReferenceSeconds(901); },
        [](FolderEntry& entry) { entry.number = 8; },
        [](FolderEntry& entry) { entry.changed = dateFromReferenceSeconds(901); },
    };
    for (const auto& change : changes) {
        ask(file, "key");
        FolderEntry changed = file;
        change(changed);
        EXPECT_EQ(ask(changed, "other"), (Answer{"other", true}));
        EXPECT_EQ(ask(changed, "third"), (Answer{"other", false}));
    }
}

TEST_F(KeyMemoryTest, aFileThatChangedOnlyJustOrLaterOrOfWhichLittleIsToldIsReadEachTime) {
    FolderEntry justChanged = file;
    justChanged.changed = dateFromReferenceSeconds(998);
    FolderEntry changedLater = file;
    changedLater.changed = dateFromReferenceSeconds(2000);
    FolderEntry withoutNumber = file;
    withoutNumber.number = 0;
    FolderEntry withoutDate = file;
    withoutDate.changed.reset();
    for (const FolderEntry& each : {justChanged, changedLater, withoutNumber, withoutDate}) {
        EXPECT_EQ(ask(each, "key"), (Answer{"key", true}));
        EXPECT_EQ(ask(each, "other"), (Answer{"other", true}));
    }
}

TEST_F(KeyMemoryTest, afterAnErrorOfReadingItIsReadAgain) {
    const auto failing = [&]() -> Key { throw std::runtime_error("unreadable"); };
    EXPECT_THROW(memory.keyOf(file, now, failing), std::runtime_error);
    EXPECT_EQ(ask(file, "key"), (Answer{"key", true}));
}

}  // namespace
}  // namespace browsersweep

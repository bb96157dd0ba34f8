#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <leveldb/env.h>

namespace browsersweep {

/**
 * What LevelDB runs in here: without threads, without a log, and with files that cannot be read
 * beyond their ends. Work for later is kept until it is asked for.
 */
class QuietEnvironment : public leveldb::EnvWrapper {
public:
    /** With the files of another environment, which must live longer. */
    explicit QuietEnvironment(leveldb::Env& files);
    QuietEnvironment(const QuietEnvironment&) = delete;
    QuietEnvironment& operator=(const QuietEnvironment&) = delete;
    ~QuietEnvironment() override;

    /** Does the work that waits, and what comes of it. LevelDB must not be at anything else. */
    void doWaitingWork();
    /** From now on no file can be made: work that waits ends before it begins. */
    void refuseNewFiles() noexcept { refusesNewFiles_ = true; }

    leveldb::Status NewRandomAccessFile(const std::string& name,
                                        leveldb::RandomAccessFile** result) override;
    leveldb::Status NewWritableFile(const std::string& name,
                                    leveldb::WritableFile** result) override;
    void Schedule(void (*function)(void* argument), void* argument) override;
    leveldb::Status NewLogger(const std::string& name, leveldb::Logger** result) override;
    void SleepForMicroseconds(int microseconds) override;

private:
    std::vector<std::pair<void (*)(void*), void*>> waiting_;
    bool refusesNewFiles_ = false;
};

}  // namespace browsersweep

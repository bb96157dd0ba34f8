#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <leveldb/env.h>

#include "browsersweep/base/Bytes.h"

namespace browsersweep {

/**
 * A folder of files in memory for LevelDB to work in, where no disk has room. Everything but files
 * is as the system has it.
 */
class MemoryEnvironment : public leveldb::EnvWrapper {
public:
    MemoryEnvironment();
    MemoryEnvironment(const MemoryEnvironment&) = delete;
    MemoryEnvironment& operator=(const MemoryEnvironment&) = delete;
    ~MemoryEnvironment() override;

    /** By what name LevelDB knows the folder. */
    static constexpr const char* folder = "/memory";

    /** Puts a file into the folder. */
    void add(const std::string& name, Bytes contents);
    /** Takes all files out of the folder, by their names. LevelDB must be closed. */
    std::map<std::string, Bytes> takeFiles();

    leveldb::Status NewSequentialFile(const std::string& path,
                                      leveldb::SequentialFile** result) override;
    leveldb::Status NewRandomAccessFile(const std::string& path,
                                        leveldb::RandomAccessFile** result) override;
    leveldb::Status NewWritableFile(const std::string& path,
                                    leveldb::WritableFile** result) override;
    leveldb::Status NewAppendableFile(const std::string& path,
                                      leveldb::WritableFile** result) override;
    bool FileExists(const std::string& path) override;
    leveldb::Status GetChildren(const std::string& path, std::vector<std::string>* result) override;
    leveldb::Status RemoveFile(const std::string& path) override;
    leveldb::Status CreateDir(const std::string& path) override;
    leveldb::Status RemoveDir(const std::string& path) override;
    leveldb::Status GetFileSize(const std::string& path, std::uint64_t* size) override;
    leveldb::Status RenameFile(const std::string& from, const std::string& to) override;
    leveldb::Status LockFile(const std::string& path, leveldb::FileLock** lock) override;
    leveldb::Status UnlockFile(leveldb::FileLock* lock) override;

private:
    using Contents = std::shared_ptr<Bytes>;

    Contents find(const std::string& path) const;

    std::map<std::string, Contents> files_;  // by their paths
};

}  // namespace browsersweep

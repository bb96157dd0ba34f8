#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/sqlite/internal/MemoryFile.h"

struct sqlite3_file;
struct sqlite3_io_methods;
struct sqlite3_vfs;

namespace browsersweep {

/** Bounds of one open file. */
struct FileBounds {
    bool onlyReads = false;
    std::string index;                          ///< of the log, asked about before it is opened
    std::shared_ptr<OperationControl> control;  ///< asked at each reading; may be null
    bool isSettled = false;                     ///< nobody changes it: no lock and no log is needed
    bool indexesInMemory = false;  ///< nobody changes it: the log's index is this connection's own
};

/**
 * An open file as SQLite holds it: at the beginning of memory that SQLite gives and takes back, and
 * followed there by the system's own file. Either that one is used, within bounds, or memory.
 */
class ConfinedFile {
public:
    /** How much memory SQLite has to give. */
    static int sizeWith(const sqlite3_vfs& system) noexcept;

    /** Makes a file that is not open in SQLite's memory. */
    static ConfinedFile& prepare(sqlite3_file* memory) noexcept;

    /** The file that SQLite means. */
    static ConfinedFile& of(sqlite3_file* file) noexcept;

    /** Opens the system's file. Returns SQLite's code. */
    int open(sqlite3_vfs& vfs, const char* name, int flags, int* flagsGiven) noexcept;

    /** From now on SQLite works with the system's file, within bounds. */
    void confine(FileBounds bounds);

    /** From now on SQLite works with memory. */
    void keepInMemory();

    /** Closes the system's file, if that is open, and gives back what is held. */
    int close() noexcept;

    /** The system's file behind this one. */
    sqlite3_file* system() noexcept;

    MemoryFile& memory() noexcept { return *memory_; }

    bool onlyReads() const noexcept { return bounds_->onlyReads; }
    bool isSettled() const noexcept { return bounds_->isSettled; }
    bool isToStop() const noexcept { return bounds_->control && bounds_->control->shouldStop(); }
    /** Whether the log's index may be opened: a regular file with one name, or none yet. */
    bool mayOpenIndex() const noexcept;

    /** A piece of the log's index in memory: made, empty, where there is none. */
    void* indexRegion(std::size_t number, std::size_t size);
    void dropIndex() noexcept { index_.clear(); }

private:
    const sqlite3_io_methods* methods_ = nullptr;  // first: where SQLite looks for them
    std::unique_ptr<FileBounds> bounds_;
    std::unique_ptr<MemoryFile> memory_;
    std::vector<std::vector<std::uint64_t>> index_;  // all regions have one size
};

}  // namespace browsersweep

#pragma once

#include <cstdint>
#include <string>

/** The same work without the library, as little as it takes. Each returns a figure to compare. */
namespace reference {

/** Files of a tree, walked with openat, readdir and fstatat: the number of them plus their bytes.
 */
std::uint64_t sizeTree(const std::string& root);
/** The same, without the files whose names hold a text. */
std::uint64_t sizeTreeExcluding(const std::string& root, const std::string& pattern);
/** The same, of the files created in 1970 or later. */
std::uint64_t sizeTreeByBirth(const std::string& root);
/** Deletes the files of a tree and keeps its folders: the number of them. */
std::uint64_t cleanTree(const std::string& root);

/** Copies a database as cheaply as the kernel can and runs one counting statement on the copy. */
std::uint64_t countOnCopy(const std::string& database, const std::string& sql);
/** Runs a counting statement in place. */
std::uint64_t count(const std::string& database, const std::string& sql);
/** Runs statements in place. */
std::uint64_t execute(const std::string& database, const std::string& sql);

/**
 * Deletes what a host has in the benchmark's home: its rows, its folder and its cached files.
 * Compact: so that no byte of them stays in the databases.
 */
std::uint64_t forgetSite(const std::string& home, const std::string& host, bool isCompact);

/** Parses a JSON file into the JSON library's own tree: the number of bytes. */
std::uint64_t parseJson(const std::string& file);

/** Reads every cookie of a binary cookie file with a flat parser: the number of them. */
std::uint64_t readCookies(const std::string& file);
/** The same, drops the older half by creation date, and writes the file anew in memory. */
std::uint64_t rewriteCookies(const std::string& file, double oldestKept);

}  // namespace reference

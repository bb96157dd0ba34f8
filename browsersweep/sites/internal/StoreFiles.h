#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/** What lies at a path, asked of its parent: a link is not followed. Absent where it is missing. */
std::optional<FolderEntry> entryIfThere(const FileManager& fileManager,
                                        const std::filesystem::path& path);

/** How many files a folder holds, and how many bytes; of a file, itself. Nothing where it is
 * missing. */
CleanableDataSize sizeOfAll(const FileManager& fileManager, const std::filesystem::path& path);

/** The same of an entry that was listed: its folder is not looked through again. */
CleanableDataSize sizeOfAll(const FileManager& fileManager, const std::filesystem::path& folder,
                            const FolderEntry& entry);

/** Deletes an entry that was listed, a folder with all it holds. */
void removeAll(const FileManager& fileManager, const std::filesystem::path& folder,
               const FolderEntry& entry);

/** Deletes a file, or a folder with all it holds; nothing where it is missing. */
void removeAll(const FileManager& fileManager, const std::filesystem::path& path);

/** Deletes the files in a folder that have one of these names: no path is resolved for each. */
void removeNamed(const FileManager& fileManager, const std::filesystem::path& folder,
                 const std::set<std::string, std::less<>>& names);

/** Deletes what a replacement of a file or folder left beside it when it was cut short. */
void removeLeftBeside(const FileManager& fileManager, const std::filesystem::path& path);

/**
 * Whether a text is an origin, in any form, of the browser itself or of an extension: such data
 * belongs to no site and always stays.
 */
bool isBrowsersOwn(std::string_view origin) noexcept;

/** The first bytes of a file; none where it is missing, also since it was listed. */
Bytes firstBytesIfThere(const FileManager& fileManager, const std::filesystem::path& file,
                        std::size_t count);

/** The last bytes of a file; none where it is missing, also since it was listed. */
Bytes lastBytesIfThere(const FileManager& fileManager, const std::filesystem::path& file,
                       std::size_t count);

/** The whole of a file; absent where it is missing. What is no regular file is a
 * `filesystem_error`. */
std::optional<Bytes> contentsIfThere(const FileManager& fileManager,
                                     const std::filesystem::path& file);

/** The bytes as text. Valid as long as they are. */
std::string_view textOf(BytesView bytes) noexcept;

}  // namespace browsersweep

#pragma once

#include <filesystem>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/internal/RowFiles.h"

namespace browsersweep {

/** The folder of that name beside a database. */
std::filesystem::path iconsBeside(const std::filesystem::path& database);
std::filesystem::path imagesBeside(const std::filesystem::path& database);
std::filesystem::path bodiesBeside(const std::filesystem::path& database);
std::filesystem::path folderOfSnapshots(const std::filesystem::path& database);

/** @{ */
/** The files of these folders, by their names in small letters, without what follows a dot. */
std::vector<RowFile> findIcons(const FileManager& fileManager,
                               const std::filesystem::path& database);
std::vector<RowFile> findImages(const FileManager& fileManager,
                                const std::filesystem::path& database);
std::vector<RowFile> findBodies(const FileManager& fileManager,
                                const std::filesystem::path& database);
/** @} */

/** The pictures beside the database of pictures of tabs. */
std::vector<RowFile> findSnapshots(const FileManager& fileManager,
                                   const std::filesystem::path& database);

/** An icon's file has its row's identifier as its name. */
inline constexpr RowFiles iconFiles{"icon_info", "lower(replace(uuid, '-', ''))", iconsBeside,
                                    findIcons};

/** The icon of a site has a digest of its host. */
inline constexpr RowFiles siteIconFiles{"cache_settings", "md5Of(host)", imagesBeside, findImages};

/** The contents of a large response lie in a file whose name stands in their place. */
inline constexpr RowFiles bodyFiles{
    "cfurl_cache_response",
    "(SELECT lower(CAST(data AS TEXT)) FROM (SELECT entry_ID AS entry, receiver_data AS data,"
    " isDataOnFS AS isFile FROM cfurl_cache_receiver_data) WHERE entry = entry_ID AND isFile)",
    bodiesBeside, findBodies};

/** The picture of a tab. */
inline constexpr RowFiles snapshotFiles{"snapshot_metadata", "filename", folderOfSnapshots,
                                        findSnapshots};

}  // namespace browsersweep

#pragma once

#include <filesystem>
#include <memory>

#include "browsersweep/sites/internal/LevelStore.h"

namespace browsersweep {

/** @{ */
/** What the records of Chromium's databases are. The hosts are of use to some only. */
std::unique_ptr<LevelSchema> localStorageSchema(const KnownHosts& knownHosts);
std::unique_ptr<LevelSchema> sessionStorageSchema(const KnownHosts& knownHosts);
std::unique_ptr<LevelSchema> notificationSchema(const KnownHosts& knownHosts);
std::unique_ptr<LevelSchema> siteCharacteristicsSchema(const KnownHosts& knownHosts);
std::unique_ptr<LevelSchema> fileSystemSchema(const KnownHosts& knownHosts);
std::unique_ptr<LevelSchema> serviceWorkerSchema(const KnownHosts& knownHosts);
/** @} */

/** The numbered folders beside the database of origins. */
std::unique_ptr<LevelCompanions> fileSystemFolders(
    const std::filesystem::path& database, const std::shared_ptr<const FileManager>& fileManager);

/** The cache beside the database of service workers, with their scripts. */
std::unique_ptr<LevelCompanions> serviceWorkerScripts(
    const std::filesystem::path& database, const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep

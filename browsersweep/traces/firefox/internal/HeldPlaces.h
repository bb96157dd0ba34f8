#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/internal/SiteFunctions.h"

namespace browsersweep {

/**
 * The addresses that a bookmark or a keyword of "places.sqlite" holds, and for each the address of
 * the icon that its whole site has. None where the file is missing. Changes nothing. Throws
 * `filesystem_error`, `SQLiteError` and `OperationCancelled`: without knowing them nothing may go.
 */
ProtectedAddresses heldPlaces(const std::filesystem::path& places,
                              const std::shared_ptr<const FileManager>& fileManager);

/**
 * Calls for the address of each page that "places.sqlite" knows, perhaps more than once. For none
 * where the file is missing. Changes nothing, and throws as above.
 */
void visitPlaces(const std::filesystem::path& places,
                 const std::shared_ptr<const FileManager>& fileManager,
                 const std::function<void(std::string_view)>& visit);

}  // namespace browsersweep

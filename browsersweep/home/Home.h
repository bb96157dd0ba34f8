#pragma once

#include <filesystem>
#include <memory>
#include <type_traits>
#include <utility>

#include "browsersweep/Export.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/home/CurrentUserDirectoryProvider.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/SystemServices.h"

namespace browsersweep {

/**
 * What belongs together where browsers' data is looked for: the file manager that reaches it, the
 * user's directories, and the services of the running system. A plain value that never changes.
 *
 * The services of the running system act on the user who is logged in: they stop that user's cookie
 * daemons and empty that user's shared cookie storage. So a home has them only where it is that
 * user's own, and in every other case services that touch nothing outside its files. Only
 * `withServices` gives a home others.
 */
class BROWSERSWEEP_EXPORT Home {
public:
    /** The current user's own home, whose operations can be stopped where there is a control. */
    static Home current(std::shared_ptr<OperationControl> control = nullptr);

    /** Another home folder: a copy, a sample, another user's. It need not exist. */
    static Home at(std::filesystem::path folder,
                   std::shared_ptr<OperationControl> control = nullptr);

    /**
     * The home that a file manager serves: the current user's own where it says so
     * (`FileManager::servesCurrentUser`), otherwise another. May not be null.
     */
    Home(std::shared_ptr<const FileManager> fileManager);  // NOLINT(google-explicit-constructor)

    /** The same for a file manager whose own type is known. */
    template <typename Manager, std::enable_if_t<std::is_base_of_v<FileManager, Manager>, int> = 0>
    Home(std::shared_ptr<Manager> fileManager)  // NOLINT(google-explicit-constructor)
        : Home(std::shared_ptr<const FileManager>(std::move(fileManager))) {}

    /**
     * A home whose directories are laid out in another way. It counts as another home, whatever the
     * file manager serves: what its directories hold is the provider's to know. None may be null.
     */
    Home(std::shared_ptr<const FileManager> fileManager,
         std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider);

    /** The same home with services that the host has chosen. */
    Home withServices(SystemServices services) const;

    /** What reaches its files. Never null. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept { return fileManager_; }

    /** Where its user's data lies. Never null. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return directoryProvider_;
    }

    /** What Safari's data needs beside its files. */
    const SystemServices& services() const noexcept { return services_; }

private:
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider_;
    SystemServices services_;
};

}  // namespace browsersweep

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/home/CurrentUserDirectoryProvider.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/SystemServices.h"

namespace browsersweep {

/**
 * Safari's HTTP cookies: its cookie files, and those that the system's shared cookie storage holds.
 * A file that is missing is neither counted nor reported; one that cannot be read counts as nothing
 * and is left as it is. Neither measuring nor cleaning fails for a file: what went wrong goes to
 * the system log at debug level, or makes the size approximate.
 *
 * Only the dates of filters are compared with the cookies of files, only their patterns with those
 * of the storage. Sizes are those of the files alone.
 */
class BROWSERSWEEP_EXPORT CleanableSafariCookies final : public CleanableData {
public:
    /** Takes the cookie storage, the processes and the log of the running system. */
    explicit CleanableSafariCookies(const std::shared_ptr<const FileManager>& fileManager);

    /** Takes them from a set of replaceable parts. */
    CleanableSafariCookies(const std::shared_ptr<const FileManager>& fileManager,
                           const SystemServices& services);

    /** The same with other user directories. */
    CleanableSafariCookies(std::shared_ptr<const FileManager> fileManager,
                           std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider,
                           const SystemServices& services);

    using CleanableData::clean;
    using CleanableData::size;

    bool requiresClosedBrowserToClean() const noexcept override { return true; }

    CleanableDataSize size(CleanableDataFilters filters) const override;

    /**
     * Stops the system's two cookie daemons, which would write the old cookies back. Without
     * filters the files are deleted, with filters they are rewritten, if only to hold no cookie.
     * Then the selected cookies of the storage are deleted.
     */
    void clean(CleanableDataFilters filters) const override;

private:
    std::vector<std::filesystem::path> cookieFiles() const;
    CleanableDataSize sizeOf(const std::filesystem::path& file, CleanableDataFilters filters) const;
    CleanableDataSize::Measurement fileSize(const std::filesystem::path& file) const;
    void stopDaemons() const;
    void cleanFile(const std::filesystem::path& file, CleanableDataFilters filters) const;
    void cleanStorage(CleanableDataFilters filters) const;
    void log(std::string_view message, const std::filesystem::path& file,
             std::string_view error) const;

    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider_;
    std::shared_ptr<HTTPCookieStorage> cookieStorage_;
    std::shared_ptr<const ProcessLauncher> processLauncher_;
    std::shared_ptr<const SystemLog> systemLog_;
};

}  // namespace browsersweep

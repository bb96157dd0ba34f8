#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/home/Home.h"

namespace browsersweep {

/**
 * Safari's HTTP cookies: its cookie files, and those that the system's shared cookie storage holds.
 * A file that is missing is neither counted nor reported; one that cannot be read counts as nothing
 * and is left as it is. Neither measuring nor cleaning fails for a file: what went wrong goes to
 * the system log at debug level, or makes the size approximate. Only being told to stop ends them.
 *
 * Only the dates of filters are compared with the cookies of files, only their patterns with those
 * of the storage. Sizes are those of the files alone.
 */
class BROWSERSWEEP_EXPORT CleanableSafariCookies final : public CleanableData {
public:
    /** The cookies of this home. The storage is its services' shared one, named "Cookies". */
    explicit CleanableSafariCookies(Home home);

    /** What reaches the cookie files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept {
        return home_.fileManager();
    }
    /** Where the Library folder with the cookie files lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return home_.directoryProvider();
    }
    /** The shared storage whose cookies go with those of the files. */
    const std::shared_ptr<HTTPCookieStorage>& cookieStorage() const noexcept {
        return cookieStorage_;
    }

    /** Always HTTP cookies. */
    static constexpr CleanableDataCategory category() noexcept {
        return CleanableDataCategory::httpCookies;
    }

    using CleanableData::clean;
    using CleanableData::size;

    bool requiresClosedBrowserToClean() const noexcept override { return true; }

    /** The places of both cookie files, whether or not they exist. */
    std::vector<CleanableDataLocation> locations() const override;

    /**
     * One part, told by `exclude` alone: the files then lose nothing, and the storage keeps what is
     * excluded. Dates are not compared with the storage, nor `include` with the files.
     */
    std::vector<CleanableDataPart> parts() const override;

    CleanableDataSize size(CleanableDataFilters filters) const override;

    /** What `size` adds up: each of the files that are there and can be read, with its size. */
    std::vector<std::pair<std::filesystem::path, CleanableDataSize>> sizesOfFiles(
        CleanableDataFilters filters) const;

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
    OperationProgress cleanFile(const std::filesystem::path& file,
                                CleanableDataFilters filters) const;
    void cleanStorage(CleanableDataFilters filters) const;
    template <typename Operation>
    void logFailure(std::string_view message, const std::filesystem::path& file,
                    Operation operation) const;
    void log(std::string_view message, const std::filesystem::path& file,
             std::string_view error) const;
    void count(const OperationProgress& done) const noexcept;

    Home home_;
    std::shared_ptr<HTTPCookieStorage> cookieStorage_;
};

}  // namespace browsersweep

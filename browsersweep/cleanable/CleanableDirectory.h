#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/** A file that filters select. */
struct SelectedFile {
    std::filesystem::path path;  ///< of the file itself
    std::uint64_t bytes = 0;     ///< its size

    /** Whether all fields are equal. */
    friend bool operator==(const SelectedFile&, const SelectedFile&) = default;
};

/**
 * Data kept as loose files below one directory. Files are counted and deleted, at any depth; the
 * directory and its subdirectories stay. Links below it are files of their own and are not
 * followed. A directory that is missing, or is none, holds nothing: that is no error.
 *
 * A directory that is a link or not reached without one, and what is mounted below it, holds
 * nothing either (`FileManager::enumerator`); the file manager's control is told. A file that
 * vanishes while it is looked at was never there. A subdirectory that may not be opened counts as
 * empty, but one that cannot be listed for another reason is an error. The control is asked for
 * each entry.
 *
 * A list of filters is asked filter after filter, and the last one with an opinion decides; without
 * any opinion a file is taken. A patterns filter has an opinion where one of its patterns occurs in
 * the file's name (letter case counts, the empty pattern occurs in every name): `include` accepts,
 * `exclude` rejects, and where no pattern occurs it says nothing. A dates filter accepts or rejects
 * by the file's creation date and says nothing where that cannot be read. A filter with both
 * opinions accepts only if both accept. This differs from databases on purpose.
 */
class BROWSERSWEEP_EXPORT CleanableDirectory : public CleanableData {
public:
    /** The own filters apply in addition to those of each call: both lists must accept a file. */
    CleanableDirectory(std::filesystem::path directory, bool requiresClosedBrowserToClean,
                       std::vector<CleanableDataFilter> filters,
                       std::shared_ptr<const FileManager> fileManager);

    /** The folder whose files are counted and deleted. */
    const std::filesystem::path& directory() const noexcept { return directory_; }
    /** The own filters, which every call has to pass besides its own. */
    const std::vector<CleanableDataFilter>& filters() const noexcept { return filters_; }
    /** What reaches the folder and its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept { return fileManager_; }
    bool requiresClosedBrowserToClean() const noexcept override {
        return requiresClosedBrowserToClean_;
    }

    std::vector<CleanableDataLocation> locations() const override {
        return {{CleanableDataLocation::Kind::folder, directory_}};
    }

    /**
     * One part: the directory can be told by dates. Names of files tell no site, so that patterns
     * are not among what it can be told by, though `exclude` keeps a file in whose name one occurs.
     * The part takes no file whose date cannot be read where a filter has dates.
     */
    std::vector<CleanableDataPart> parts() const override;

    /**
     * The files that the filters select, in the file system's order. Throws `filesystem_error` and
     * `OperationCancelled`.
     */
    std::vector<SelectedFile> files(CleanableDataFilters filters) const;

    using CleanableData::clean;
    using CleanableData::size;
    /**
     * The number of files and the sum of their sizes, both exact. Throws `filesystem_error` and
     * `OperationCancelled`.
     */
    CleanableDataSize size(CleanableDataFilters filters) const override;
    /**
     * Deletes file after file; the first deletion that fails ends it. Throws `filesystem_error` and
     * `OperationCancelled`.
     */
    void clean(CleanableDataFilters filters) const override;

private:
    template <typename Visitor>
    void forEachSelectedEntry(CleanableDataFilters filters, Visitor visit) const;

    std::filesystem::path directory_;
    bool requiresClosedBrowserToClean_;
    std::vector<CleanableDataFilter> filters_;
    std::shared_ptr<const FileManager> fileManager_;
    bool takesUndated_ = true;
};

}  // namespace browsersweep

#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Date.h"
#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {

/** Entries of a property list: the values of one array or dictionary. */
struct PropertyListRow {
    std::string_view
        key;  ///< where they stand in the outermost dictionary; empty: they are its own
    TraceKind kind = TraceKind::history;
    /** Of a dictionary: how its keys name sites; absent: what the values hold does. */
    std::optional<SiteForm> keys{};
    std::string_view date{};  ///< the key of an entry's date; empty: it has none
};

/** A property list that names sites, entry by entry. */
struct PropertyListForm {
    std::string_view path;  ///< below the profile's folder
    std::span<const PropertyListRow> rows;
};

/**
 * A property list as a store: what stays keeps its value and its place, and the file its form,
 * binary or XML.
 */
class PropertyListStore : public TraceStore {
public:
    /** Whether an entry belongs to this store's profile. */
    using IsOwn = std::function<bool(const PropertyList& entry)>;
    /** Finds that out afresh each time. */
    using OwnersOf = std::function<IsOwn()>;

    /** Without a function to tell, all entries belong to the profile. */
    PropertyListStore(const PropertyListForm& form, const std::filesystem::path& folder,
                      std::shared_ptr<const FileManager> fileManager, OwnersOf owners = {});

    std::filesystem::path path() const override { return path_; }
    std::set<TraceKind> kinds() const override;
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    IsOwn owners() const;
    PropertyList withoutEntries(const PropertyList& root, const ForgetRequest& request) const;

    PropertyListForm form_;
    std::filesystem::path path_;
    std::shared_ptr<const FileManager> fileManager_;
    OwnersOf owners_;
};

}  // namespace browsersweep

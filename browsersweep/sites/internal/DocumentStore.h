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
#include "browsersweep/documents/internal/JsonEditor.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/HostDigests.h"

namespace browsersweep {

/** What one entry of a document is. */
struct DocumentEntry {
    std::vector<std::string> hosts;  ///< whose it is; none: nobody knows, or it is no site's
    bool alwaysStays = false;        ///< the browser's own, or a setting that is no site's
    std::optional<Date> lastUsed;    ///< where it tells that
};

/** Entries of a document: the members or elements of one value, or of several. */
struct DocumentRow {
    using KindOf = TraceKind (*)(std::string_view key);
    using EntryOf = DocumentEntry (*)(const JsonEditor& document, const JsonEditor::Member& entry,
                                      const HostDigests& digests);

    std::string_view place;   ///< keys between slashes; "*" stands for every key
    KindOf kindOf = nullptr;  ///< by the last of these keys
    EntryOf entryOf = nullptr;
};

/** A document in JSON that names sites. */
struct DocumentForm {
    std::string_view path;  ///< below the profile's folder
    std::set<TraceKind> kinds;
    std::vector<DocumentRow> rows;
    bool goesWhole = false;                    ///< there is nothing else in it
    HostDigests::DigestOf digestOf = nullptr;  ///< where it has digests in the place of hosts
    std::string_view unknown;  ///< what the entries are whose site nobody knows, if there are any
};

/** A document as a store: entries are cut out of its text, and every other byte stays. */
class DocumentStore : public TraceStore {
public:
    DocumentStore(DocumentForm form, const std::filesystem::path& profile,
                  std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return path_; }
    std::set<TraceKind> kinds() const override { return form_.kinds; }
    bool needsKnownHosts() const noexcept override { return form_.digestOf != nullptr; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    HostDigests digestsOf(const KnownHosts& knownHosts) const;

    DocumentForm form_;
    std::filesystem::path path_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep

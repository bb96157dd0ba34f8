#include "browsersweep/traces/safari/internal/OriginRecord.h"

#include <cstddef>
#include <optional>
#include <string>

#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/traces/safari/internal/WebKitText.h"

namespace browsersweep {
namespace {

/** Two hosts of the longest kind in letters of two bytes, and more. */
constexpr std::size_t largestRecord = 4096;

/** Scheme, host, and a port where it is not the scheme's own. */
std::optional<std::string> takeHost(WebKitText& text) {
    const auto scheme = text.text();
    const auto host = text.text();
    const auto hasPort = text.number(1);
    if (!scheme || !host || !hasPort || *hasPort > 1 || (*hasPort == 1 && !text.number(2))) {
        return std::nullopt;
    }
    return hostOfAddress(*scheme + "://" + *host);
}

}  // namespace

FolderOwner ownerInOriginRecord(std::string_view bytes) {
    WebKitText text(bytes);
    const auto page = takeHost(text);
    const auto frame = page ? takeHost(text) : std::nullopt;
    if (!frame) {
        return {};
    }
    FolderOwner owner{{}, frame->empty()};
    for (const std::string& host : {*page, *frame}) {
        if (!host.empty() && (owner.hosts.empty() || owner.hosts.front() != host)) {
            owner.hosts.push_back(host);
        }
    }
    return owner;
}

FolderOwner ownerOfOriginFolder(const FileManager& fileManager,
                                const std::filesystem::path& folder) {
    const Bytes bytes = firstBytesIfThere(fileManager, folder / originFile, largestRecord);
    return ownerInOriginRecord(textOf(bytes));
}

}  // namespace browsersweep

#include "browsersweep/traces/firefox/internal/ServiceWorkerListStore.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

constexpr std::string_view endOfRecord = "#\n";

/** A worker, or at the end what is no whole record any more and belongs to nobody. */
struct Record {
    std::string_view text;
    std::vector<std::string> hosts;
    bool isExtensions = false;
};

std::string_view takeUpTo(std::string_view& text, std::size_t end) noexcept {
    const std::string_view piece = text.substr(0, std::min(end, text.size()));
    text.remove_prefix(piece.size());
    return piece;
}

std::string_view takeLine(std::string_view& text) noexcept {
    const auto end = text.find('\n');
    return takeUpTo(text, end == std::string_view::npos ? end : end + 1);
}

void addHosts(std::string_view line, Record& record) {
    line = line.substr(0, line.find('\n'));
    const auto form = line.starts_with('^') ? SiteForm::originAttributes : SiteForm::address;
    const auto hosts = hostsIn(form, line);
    record.hosts.insert(record.hosts.end(), hosts.begin(), hosts.end());
    record.isExtensions = record.isExtensions || line.starts_with("moz-extension:");
}

Record takeRecord(std::string_view& text) {
    Record record;
    std::string_view rest = text;
    for (std::string_view line; !rest.empty() && line != endOfRecord;) {
        line = takeLine(rest);
        addHosts(line, record);
    }
    record.text = takeUpTo(text, text.size() - rest.size());
    return record;
}

std::vector<Record> recordsOf(std::string_view text) {
    takeLine(text);
    std::vector<Record> records;
    while (!text.empty()) {
        records.push_back(takeRecord(text));
    }
    return records;
}

}  // namespace

ServiceWorkerListStore::ServiceWorkerListStore(std::filesystem::path path,
                                               std::shared_ptr<const FileManager> fileManager)
    : path_(std::move(path)), fileManager_(std::move(fileManager)) {}

TraceListing ServiceWorkerListStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    const Bytes contents = contentsIfThere(*fileManager_, path_).value_or(Bytes());
    for (const Record& record : recordsOf(textOf(contents))) {
        collector.add(TraceKind::serviceWorkers, record.hosts, {1, record.text.size()});
    }
    return {collector.takeTraces(), {}};
}

ForgetOutcome ServiceWorkerListStore::forget(const ForgetRequest& request) const {
    if (!request.takes(TraceKind::serviceWorkers)) {
        return {};
    }
    removeLeftBeside(*fileManager_, path_);
    const Bytes contents = contentsIfThere(*fileManager_, path_).value_or(Bytes());
    std::string_view text = textOf(contents);
    SiteMatcher matcher(request.sites);
    std::string left(takeLine(text));
    for (const Record& record : recordsOf(textOf(contents))) {
        if (record.isExtensions || !matcher.selectsHosts(record.hosts)) {
            left += record.text;
        }
    }
    if (left.size() < contents.size()) {
        fileManager_->replace(path_, Bytes(left.begin(), left.end()));
    }
    return {};
}

}  // namespace browsersweep

#include "browsersweep/cleanable/CleanableDirectory.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "browsersweep/base/FatalError.h"

namespace browsersweep {
namespace {

/** Accept, reject, or nothing to say. */
using Opinion = std::optional<bool>;

Opinion patternOpinion(const CleanableDataFilter& filter, std::string_view name) {
    if (!filter.patternsData) {
        return std::nullopt;
    }
    const auto& [rule, patterns] = *filter.patternsData;
    const bool occurs = std::any_of(patterns.begin(), patterns.end(), [&](const auto& pattern) {
        return name.find(pattern) != std::string_view::npos;
    });
    return occurs ? Opinion(rule == CleanableDataFilter::Patterns::Rule::include) : std::nullopt;
}

Opinion dateOpinion(const CleanableDataFilter& filter, DirectoryEnumerator& entry) {
    if (!filter.datesData) {
        return std::nullopt;
    }
    const std::optional<Date> created = entry.creationDate();
    return created ? Opinion(filter.datesData->matches(*created)) : std::nullopt;
}

bool listAccepts(CleanableDataFilters filters, DirectoryEnumerator& entry) {
    bool verdict = true;
    for (const CleanableDataFilter& filter : filters) {
        const Opinion byPattern = patternOpinion(filter, entry.name());
        const Opinion byDate = dateOpinion(filter, entry);
        if (byPattern || byDate) {
            verdict = byPattern.value_or(true) && byDate.value_or(true);
        }
    }
    return verdict;
}

CleanableDataSize fileSize(std::uint64_t bytes) {
    if (!std::in_range<std::int64_t>(bytes)) {
        fatalError("a file's size does not fit in 63 bits");
    }
    return {1, static_cast<std::int64_t>(bytes)};
}

}  // namespace

CleanableDirectory::CleanableDirectory(std::filesystem::path directory,
                                       bool requiresClosedBrowserToClean,
                                       std::vector<CleanableDataFilter> filters,
                                       std::shared_ptr<const FileManager> fileManager)
    : directory_(std::move(directory)),
      requiresClosedBrowserToClean_(requiresClosedBrowserToClean),
      filters_(std::move(filters)),
      fileManager_(std::move(fileManager)) {}

/** The one selection that sizing and cleaning share, so that a preview cannot disagree. */
template <typename Visitor>
void CleanableDirectory::forEachSelectedEntry(CleanableDataFilters filters, Visitor visit) const {
    const auto control = fileManager_->control();
    continueOrThrow(control.get());
    if (!fileManager_->fileExists(directory_).isDirectory) {
        return;
    }
    const bool needsDate = !takesUndated_ && partsOf(filters).dates;
    const auto entry = fileManager_->enumerator(directory_);
    while (entry && entry->next()) {
        continueOrThrow(control.get());
        if (!listAccepts(filters_, *entry) || !listAccepts(filters, *entry) ||
            (needsDate && !entry->creationDate())) {
            continue;
        }
        const OperationProgress done = visit(*entry);
        if (control) {
            control->count(done);
        }
    }
}

std::vector<CleanableDataPart> CleanableDirectory::parts() const {
    const auto dated = std::make_shared<CleanableDirectory>(*this);
    dated->takesUndated_ = false;
    return {{{}, {false, false, true}, dated}};
}

std::vector<SelectedFile> CleanableDirectory::files(CleanableDataFilters filters) const {
    std::vector<SelectedFile> files;
    forEachSelectedEntry(filters, [&](DirectoryEnumerator& entry) -> OperationProgress {
        const auto bytes = entry.fileSize();
        if (!bytes) {
            return {};
        }
        files.push_back({directory_ / entry.relativePath(), *bytes});
        return {1, *bytes, 0};
    });
    return files;
}

CleanableDataSize CleanableDirectory::size(CleanableDataFilters filters) const {
    CleanableDataSize sum;
    forEachSelectedEntry(filters, [&](DirectoryEnumerator& entry) -> OperationProgress {
        const auto bytes = entry.fileSize();
        if (!bytes) {
            return {};
        }
        sum = sum + fileSize(*bytes);
        return {1, *bytes, 0};
    });
    return sum;
}

void CleanableDirectory::clean(CleanableDataFilters filters) const {
    forEachSelectedEntry(filters, [](DirectoryEnumerator& entry) -> OperationProgress {
        if (entry.isDirectory().value_or(true)) {
            return {};
        }
        entry.remove();
        return {1, 0, 0};
    });
}

}  // namespace browsersweep

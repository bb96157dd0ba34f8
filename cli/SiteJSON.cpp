#include "cli/SiteJSON.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "cli/DocumentText.h"

namespace browsersweep::cli {
namespace {

using cli::toJSON;  // beside those of this file

enum class Figures { sizes, removed };

JSON dateOrNull(const std::optional<Date>& date) {
    return orNull(date ? momentText(*date) : std::nullopt);
}

JSON toJSON(const SiteOwner& owner) {
    return {{"browser", rawValue(owner.browser)},
            {"profile", orNull(owner.profile)},
            {"folder", orNull(owner.folder)}};
}

/** What there is, or what was removed and what the disk gained by it. */
void addFigure(JSON& object, Figures figures, const CleanableDataSize& size,
               std::int64_t freedBytes) {
    if (figures == Figures::sizes) {
        object["size"] = toJSON(size);
        return;
    }
    object["removed"] = toJSON(size);
    object["freedBytes"] = freedBytes;
}

JSON toJSON(const SiteTraceRow& row, Figures figures) {
    JSON object = toJSON(row.owner);
    object["kind"] = row.kind.raw;
    object["hosts"] = row.hosts;
    addFigure(object, figures, row.size, row.freedBytes);
    object["lastUsed"] = dateOrNull(row.lastUsed);
    return object;
}

JSON toJSON(const SiteRow& row, Figures figures) {
    JSON object{{"site", row.site}};
    addFigure(object, figures, row.size, row.freedBytes);
    object["lastUsed"] = dateOrNull(row.lastUsed);
    object["traces"] =
        listOf(row.traces, [figures](const SiteTraceRow& trace) { return toJSON(trace, figures); });
    return object;
}

JSON mixedOf(const std::vector<MixedRow>& rows, Figures figures) {
    return listOf(rows, [figures](const MixedRow& row) {
        JSON object = toJSON(row.owner);
        object["kind"] = row.kind.raw;
        object["what"] = row.what;
        addFigure(object, figures, row.size, row.freedBytes);
        return object;
    });
}

JSON errorsOf(const std::vector<SiteErrorRow>& rows) {
    return listOf(rows, [](const SiteErrorRow& row) {
        return JSON{{"browser", rawValue(row.owner.browser)},
                    {"profile", orNull(row.owner.profile)},
                    {"what", orNull(row.what)},
                    {"error", row.error}};
    });
}

JSON toJSON(const KeptRow& row) {
    JSON object = toJSON(row.owner);
    object["kind"] = row.kind.raw;
    object["what"] = row.what;
    object["why"] = row.why;
    return object;
}

JSON toJSON(const StoreRow& row) {
    JSON object = toJSON(row.owner);
    object["what"] = row.what;
    object["verdict"] = rawValue(row.verdict);
    object["detail"] = orNull(row.detail);
    object["removed"] = toJSON(row.removed);
    object["freedBytes"] = row.freedBytes;
    object["isWithoutRemains"] = row.isWithoutRemains;
    return object;
}

}  // namespace

std::string jsonText(const SiteListReport& report) {
    DocumentText text;
    text.addList("sites", report.sites,
                 [](const SiteRow& row) { return toJSON(row, Figures::sizes); });
    text.add("notBySite", mixedOf(report.notBySite, Figures::sizes));
    text.add("errors", errorsOf(report.errors));
    return std::move(text).finish();
}

std::string jsonText(const ForgetReport& report) {
    DocumentText text;
    text.add("dryRun", report.isDryRun);
    text.add("total", toJSON(report.total));
    text.add("freedBytes", report.freedBytes);
    text.addList("forgotten", report.forgotten,
                 [](const SiteRow& row) { return toJSON(row, Figures::removed); });
    text.add("notBySite", mixedOf(report.notBySite, Figures::removed));
    text.addList("kept", report.kept, [](const KeptRow& row) { return toJSON(row); });
    text.addList("stores", report.stores, [](const StoreRow& row) { return toJSON(row); });
    text.add("errors", errorsOf(report.errors));
    if (report.keep) {
        text.add("keepList", toJSON(*report.keep));
    }
    return std::move(text).finish();
}

}  // namespace browsersweep::cli

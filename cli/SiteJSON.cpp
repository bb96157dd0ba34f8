#include "cli/SiteJSON.h"

#include <cstdint>
#include <optional>

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

JSON sitesOf(const std::vector<SiteRow>& rows, Figures figures) {
    return listOf(rows, [figures](const SiteRow& row) { return toJSON(row, figures); });
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

JSON toJSON(const SiteListReport& report) {
    return {{"sites", sitesOf(report.sites, Figures::sizes)},
            {"notBySite", mixedOf(report.notBySite, Figures::sizes)},
            {"errors", errorsOf(report.errors)}};
}

JSON toJSON(const ForgetReport& report) {
    JSON object{{"dryRun", report.isDryRun},
                {"total", toJSON(report.total)},
                {"freedBytes", report.freedBytes},
                {"forgotten", sitesOf(report.forgotten, Figures::removed)},
                {"notBySite", mixedOf(report.notBySite, Figures::removed)},
                {"kept", listOf(report.kept, [](const KeptRow& row) { return toJSON(row); })},
                {"stores", listOf(report.stores, [](const StoreRow& row) { return toJSON(row); })},
                {"errors", errorsOf(report.errors)}};
    if (report.keep) {
        object["keepList"] = toJSON(*report.keep);
    }
    return object;
}

}  // namespace browsersweep::cli

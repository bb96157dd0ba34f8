#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/base/Date.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/hosting/ItemVerdict.h"

#include "cli/KeepFile.h"

namespace browsersweep::cli {

// What the commands about sites found, before anything is written for people or machines.

/** Whose something is. */
struct SiteOwner {
    Browser browser = allBrowsers.front();
    std::optional<std::string> profile;  ///< its name, where it has one
    std::optional<std::string> folder;   ///< of the profile; absent where all profiles share it
    bool isNameShared = false;           ///< another profile of the browser goes by the same name

    friend bool operator==(const SiteOwner&, const SiteOwner&) = default;
};

/** A kind of traces, by its name in documents and for people. */
struct KindName {
    std::string_view raw;
    std::string_view display;

    friend bool operator==(const KindName&, const KindName&) = default;
};

/** What a site left in one profile, or what of it went. */
struct SiteTraceRow {
    SiteOwner owner;
    KindName kind;
    std::vector<std::string> hosts;
    CleanableDataSize size;
    std::optional<Date> lastUsed;
    std::int64_t freedBytes = 0;  ///< its share of what the disk gained
};

/** What a site left, or what of it went. */
struct SiteRow {
    std::string site;
    CleanableDataSize size;
    std::optional<Date> lastUsed;
    std::vector<SiteTraceRow> traces;
    std::int64_t freedBytes = 0;
};

/** A file or folder that tells no site apart, or what of it went. */
struct MixedRow {
    SiteOwner owner;
    KindName kind;
    std::string what;
    CleanableDataSize size;
    std::string meaning;
    std::int64_t freedBytes = 0;
};

/** What could not be looked at. */
struct SiteErrorRow {
    SiteOwner owner;
    std::optional<std::string> what;  ///< the file or folder, where it is known
    std::string error;
};

/** What stays on purpose. */
struct KeptRow {
    SiteOwner owner;
    KindName kind;
    std::string what;
    std::string why;

    friend bool operator==(const KeptRow&, const KeptRow&) = default;
};

/** What became of a store. */
struct StoreRow {
    SiteOwner owner;
    std::string what;
    ItemVerdict verdict = ItemVerdict::leftOut;
    std::optional<std::string> detail;
    std::optional<CleanableDataSize> removed;  ///< absent where it is not known
    std::int64_t freedBytes = 0;
    bool isWithoutRemains = true;
};

struct SiteListReport {
    std::vector<SiteRow> sites;
    std::vector<MixedRow> notBySite;
    std::vector<SiteErrorRow> errors;
};

struct ForgetReport {
    bool isPlan = false;  ///< nothing was deleted
    bool isDryRun = false;
    std::vector<SiteRow> forgotten;
    std::vector<MixedRow> notBySite;
    std::vector<KeptRow> kept;
    std::vector<StoreRow> stores;
    std::vector<SiteErrorRow> errors;
    CleanableDataSize total;  ///< what belongs to several sites counts once
    std::int64_t freedBytes = 0;
    /** What is to be said of the sites as they were typed, a line each. */
    std::vector<std::string> remarks;
    std::vector<std::string> hints;  ///< which options would remove what stays, a line each
    /** Whether it was asked for traces of certain sites, and there are none. */
    bool isPointless = false;
    std::optional<KeepRules> keep{};  ///< the lasting keep list; absent where there is none
};

/** The day of a date, such as "2024-02-29"; empty where no calendar of four digits has it. */
std::string dayText(Date date);

/** A date such as "2024-02-29T12:30:00Z"; absent where no calendar of four digits has it. */
std::optional<std::string> momentText(Date date);

}  // namespace browsersweep::cli

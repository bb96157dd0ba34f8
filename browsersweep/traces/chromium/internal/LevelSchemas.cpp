#include "browsersweep/traces/chromium/internal/LevelSchemas.h"

#include <array>
#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "browsersweep/sites/internal/HostDigests.h"
#include "browsersweep/sites/internal/ProtoFields.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/traces/chromium/internal/ChromiumDate.h"

namespace browsersweep {
namespace {

using Need = LevelRecord::Need;

/** What stands after a prefix and before the next zero byte. */
std::string_view between(std::string_view prefix, std::string_view key) noexcept {
    key.remove_prefix(prefix.size());
    return key.substr(0, key.find('\0'));
}

/** What stands after the last zero byte; empty where there is none. */
std::string_view afterLastZero(std::string_view key) noexcept {
    const auto zero = key.rfind('\0');
    return zero == std::string_view::npos ? std::string_view() : key.substr(zero + 1);
}

LevelRecord recordOfOrigin(SiteForm form, std::string_view origin) {
    return {isBrowsersOwn(origin) ? Need::browser : Need::site, hostsIn(form, origin), true, {}};
}

/** "_<storage key>\0<item>", and what tells of a storage key as a whole: when it was used. */
class LocalStorageSchema : public LevelSchema {
public:
    LevelRecord recordOf(std::string_view key, std::string_view value) const override {
        constexpr std::array<std::string_view, 2> notes{"META:", "METAACCESS:"};
        if (key == "VERSION") {
            return {Need::browser, {}, false, {}};
        }
        for (const std::string_view note : notes) {
            if (key.starts_with(note)) {
                return noteOn(between(note, key), value);
            }
        }
        return key.starts_with('_') ? recordOfOrigin(SiteForm::storageKey, between("_", key))
                                    : LevelRecord();
    }

private:
    static LevelRecord noteOn(std::string_view storageKey, std::string_view value) {
        LevelRecord record = recordOfOrigin(SiteForm::storageKey, storageKey);
        record.isItem = false;
        const auto fields = protoFields(value);
        if (!fields.empty() && fields.front().number == 1) {
            record.lastUsed = dateFromChromium(fields.front().value);
        }
        return record;
    }
};

/**
 * "namespace-<tab>-<storage key>" names the number of a map, and "map-<number>-<item>" is an item
 * of it. Several tabs may share a map; one that none names is of nobody.
 */
class SessionStorageSchema : public LevelSchema {
public:
    bool learns() const noexcept override { return true; }

    void learn(std::string_view key, std::string_view value) override {
        if (key.starts_with(namespacePrefix)) {
            const std::string_view storageKey = storageKeyIn(key);
            const LevelRecord record = recordOfOrigin(SiteForm::storageKey, storageKey);
            maps_[std::string(value)] = record;
        }
    }

    LevelRecord recordOf(std::string_view key, std::string_view /*value*/) const override {
        if (key.starts_with(namespacePrefix)) {
            const std::string_view storageKey = storageKeyIn(key);
            LevelRecord record = recordOfOrigin(SiteForm::storageKey, storageKey);
            record.isItem = false;
            // A tab without any storage, "namespace-<tab>-", serves those that have some.
            return storageKey.empty() ? LevelRecord{Need::others, {}, false, {}} : record;
        }
        if (key.starts_with(mapPrefix)) {
            const std::string_view rest = key.substr(mapPrefix.size());
            const auto found = maps_.find(rest.substr(0, rest.find('-')));
            return found == maps_.end() ? LevelRecord() : found->second;
        }
        return {Need::others, {}, false, {}};
    }

private:
    static constexpr std::string_view namespacePrefix = "namespace-";
    static constexpr std::string_view mapPrefix = "map-";

    // The tab's name has low lines, and no hyphen.
    static std::string_view storageKeyIn(std::string_view key) noexcept {
        key.remove_prefix(namespacePrefix.size());
        const auto hyphen = key.find('-');
        return hyphen == std::string_view::npos ? std::string_view() : key.substr(hyphen + 1);
    }

    std::map<std::string, LevelRecord, std::less<>> maps_;
};

/** "DATA:<origin identifier>\0<id>" and others of that form. */
class NotificationSchema : public LevelSchema {
public:
    LevelRecord recordOf(std::string_view key, std::string_view /*value*/) const override {
        const auto colon = key.find(':');
        if (colon == std::string_view::npos) {
            return {Need::others, {}, false, {}};
        }
        const std::string_view name = between(key.substr(0, colon + 1), key);
        LevelRecord record = recordOfOrigin(SiteForm::originIdentifier, name);
        if (record.hosts.empty()) {  // the older form
            record.hosts = hostsIn(SiteForm::address, name);
        }
        return record;
    }
};

/** Each key is a digest of a host. */
class SiteCharacteristicsSchema : public LevelSchema {
public:
    explicit SiteCharacteristicsSchema(const KnownHosts& hosts) : digests_(hosts, md5OfHost) {}

    LevelRecord recordOf(std::string_view key, std::string_view value) const override {
        if (key == "database_metadata") {
            return {Need::others, {}, false, {}};
        }
        LevelRecord record{Need::site, digests_.hostsOf(key), true, {}};
        const auto fields = protoFields(value);
        if (!fields.empty() && fields.front().number == 1) {
            record.lastUsed = dateFrom1970Seconds(static_cast<double>(fields.front().value));
        }
        return record;
    }

private:
    HostDigests digests_;
};

constexpr std::string_view originPrefix = "ORIGIN:";

/** "ORIGIN:<origin identifier>" names the folder. */
class FileSystemSchema : public LevelSchema {
public:
    LevelRecord recordOf(std::string_view key, std::string_view /*value*/) const override {
        return key.starts_with(originPrefix)
                   ? recordOfOrigin(SiteForm::originIdentifier, key.substr(originPrefix.size()))
                   : LevelRecord{Need::others, {}, false, {}};
    }
};

/**
 * Registrations by origin, what belongs to a registration by its number, and scripts by the number
 * of its version. A row that says that a registration has data of its own, and outlives it, makes
 * the browser drop the workers of all sites.
 */
class ServiceWorkerSchema : public LevelSchema {
public:
    bool learns() const noexcept override { return true; }

    void learn(std::string_view key, std::string_view value) override {
        if (key.starts_with(registrationOrigin)) {
            registrations_[std::string(key.substr(registrationOrigin.size()))] =
                recordOfOrigin(SiteForm::storageKey, value);
        }
        if (key.starts_with(registration)) {
            learnRegistration(key, value);
        }
    }

    LevelRecord recordOf(std::string_view key, std::string_view value) const override {
        if (key.starts_with(uniqueOrigin)) {
            return notAnItem(recordOfOrigin(SiteForm::storageKey, key.substr(uniqueOrigin.size())));
        }
        if (key.starts_with(registration)) {
            return recordOfOrigin(SiteForm::storageKey, between(registration, key));
        }
        if (key.starts_with(registrationOrigin)) {
            return notAnItem(recordOfOrigin(SiteForm::storageKey, value));
        }
        if (key.starts_with(userData)) {
            return notAnItem(knownIn(registrations_, between(userData, key)));
        }
        if (key.starts_with(hasUserData)) {
            return notAnItem(knownIn(registrations_, afterLastZero(key)));
        }
        if (key.starts_with(resource)) {
            return notAnItem(knownIn(versions_, between(resource, key)));
        }
        return key.starts_with(counters) ? LevelRecord{Need::others, {}, false, {}}
                                         : notAnItem(LevelRecord());
    }

private:
    using Owners = std::unordered_map<std::string, LevelRecord>;

    static constexpr std::string_view counters = "INITDATA_";
    static constexpr std::string_view uniqueOrigin = "INITDATA_UNIQUE_ORIGIN:";
    static constexpr std::string_view registration = "REG:";
    static constexpr std::string_view registrationOrigin = "REGID_TO_ORIGIN:";
    static constexpr std::string_view userData = "REG_USER_DATA:";
    static constexpr std::string_view hasUserData = "REG_HAS_USER_DATA:";
    static constexpr std::string_view resource = "RES:";

    static LevelRecord notAnItem(LevelRecord record) {
        record.isItem = false;
        return record;
    }

    static LevelRecord knownIn(const Owners& owners, std::string_view number) {
        const auto found = owners.find(std::string(number));
        return found == owners.end() ? LevelRecord() : found->second;
    }

    void learnRegistration(std::string_view key, std::string_view value) {
        constexpr unsigned versionField = 4;
        LevelRecord owner = recordOfOrigin(SiteForm::storageKey, between(registration, key));
        registrations_.emplace(afterLastZero(key), owner);
        for (const ProtoField& field : protoFields(value)) {
            if (field.number == versionField) {
                versions_[std::to_string(field.value)] = owner;
            }
        }
    }

    Owners registrations_;
    Owners versions_;
};

}  // namespace

std::unique_ptr<LevelSchema> localStorageSchema(const KnownHosts& /*knownHosts*/) {
    return std::make_unique<LocalStorageSchema>();
}

std::unique_ptr<LevelSchema> sessionStorageSchema(const KnownHosts& /*knownHosts*/) {
    return std::make_unique<SessionStorageSchema>();
}

std::unique_ptr<LevelSchema> notificationSchema(const KnownHosts& /*knownHosts*/) {
    return std::make_unique<NotificationSchema>();
}

std::unique_ptr<LevelSchema> siteCharacteristicsSchema(const KnownHosts& knownHosts) {
    return std::make_unique<SiteCharacteristicsSchema>(knownHosts);
}

std::unique_ptr<LevelSchema> fileSystemSchema(const KnownHosts& /*knownHosts*/) {
    return std::make_unique<FileSystemSchema>();
}

std::unique_ptr<LevelSchema> serviceWorkerSchema(const KnownHosts& /*knownHosts*/) {
    return std::make_unique<ServiceWorkerSchema>();
}

}  // namespace browsersweep

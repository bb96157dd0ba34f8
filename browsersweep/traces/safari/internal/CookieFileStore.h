#pragma once

#include <filesystem>
#include <optional>
#include <set>

#include "browsersweep/cookies/BinaryCookies.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/**
 * One of Safari's cookie files. What stays keeps every byte of its record. Before one of the
 * system's own is changed, its daemons are stopped and the shared storage loses the same cookies,
 * or they would write them back.
 */
class CookieFileStore : public TraceStore {
public:
    /** A file of the system's shared storage, or one that belongs to a profile alone. */
    enum class Owner { system, profile };

    CookieFileStore(std::filesystem::path file, Owner owner, Home home);

    std::filesystem::path path() const override { return file_; }
    std::set<TraceKind> kinds() const override { return {TraceKind::cookies}; }
    /** Throws also `BinaryDecodingError`. */
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    std::optional<BinaryCookies> cookies() const;
    void removeFromStorage(const SiteSelection& selection) const;

    std::filesystem::path file_;
    Owner owner_;
    Home home_;
};

}  // namespace browsersweep

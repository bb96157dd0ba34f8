#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/KeyMemory.h"
#include "browsersweep/sites/internal/SimpleCache.h"

namespace browsersweep {

/**
 * A cache in Chromium's "simple" format as a store, whose entries have addresses as their keys.
 * Everything is the folder itself. A cache in the older format tells no site apart.
 */
class CacheStore : public TraceStore {
public:
    /** With a memory, which may be null, a key that was read is not read again. */
    CacheStore(std::filesystem::path folder, std::shared_ptr<const FileManager> fileManager,
               std::shared_ptr<KeyMemory> memory = nullptr);

    std::filesystem::path path() const override { return cache_.folder(); }
    std::set<TraceKind> kinds() const override { return {TraceKind::cachedFiles}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;
    std::shared_ptr<const TraceStore> remembering() const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
    SimpleCache cache_;
};

}  // namespace browsersweep

#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/traces/firefox/internal/StateRecord.h"

namespace browsersweep {

/** One of the files of Firefox with a record for each host. */
struct StateFileRow {
    /** Whose a record is; none where nobody knows. */
    using HostsOf = std::vector<std::string> (*)(const StateRecord& record);

    std::string_view path;  ///< below the profile's folder
    TraceKind kind = TraceKind::networkState;
    std::size_t valueSize = 0;  ///< the room for a value in each record; 0: a record is a line
    HostsOf hostsOf = nullptr;
    std::string_view meaning;  ///< of records whose site nobody knows
};

/** "www.a.com^partitionKey=%28https%2Cb.com%29"; of older versions with ":HSTS" or ":HPKP" behind.
 */
std::vector<std::string> hostsOfSecurityState(const StateRecord& record);

/**
 * "https:www.a.com:443:.:^partitionKey=%28https%2Cb.com%29:3"; the value begins alike, and then
 * has the host that serves in its place.
 */
std::vector<std::string> hostsOfAlternateService(const StateRecord& record);

/** "www.a.com,,^partitionKey=%28https%2Cb.com%29" */
std::vector<std::string> hostsOfClientCertificate(const StateRecord& record);

/** Such a file: records go one by one, and the others keep every byte. */
class StateFileStore : public TraceStore {
public:
    StateFileStore(const StateFileRow& row, const std::filesystem::path& profile,
                   std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return path_; }
    std::set<TraceKind> kinds() const override { return {row_.kind}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    std::optional<Bytes> readable(const FolderEntry& entry) const;
    std::vector<std::string> ownersOf(const StateRecord& record) const;
    std::vector<StateRecord> recordsOf(std::string_view file) const;
    ForgetOutcome kept() const;

    StateFileRow row_;
    std::filesystem::path path_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep

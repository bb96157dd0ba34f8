#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/**
 * The open and closed tabs and windows of Firefox, with the cookies of the session: one file, or a
 * folder with earlier states, each a document in JSON that is compressed. Pages go one by one, from
 * the way back as well; a tab without pages, and a window without tabs, goes whole. What is no such
 * document tells no site apart.
 */
class SessionStore : public TraceStore {
public:
    SessionStore(std::filesystem::path path, std::string_view meaning,
                 std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return path_; }
    std::set<TraceKind> kinds() const override;
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    using Files = std::map<std::filesystem::path, FolderEntry>;

    Files files() const;
    void forgetIn(const std::filesystem::path& file, const FolderEntry& entry,
                  const ForgetRequest& request, ForgetOutcome& outcome) const;

    std::filesystem::path path_;
    std::string meaning_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep

#pragma once

#include <cstdint>
#include <memory>

#include "browsersweep/platform/ForwardingFileManager.h"

namespace browsersweep::cli {

/**
 * Passes everything on, but gives out no more bytes of file sizes in one run than a figure can
 * hold: any program can make a file that seems to be of eight exbibytes, and the library ends the
 * process where a sum does not fit. The size that would be too much is an error instead, which one
 * category fails with; what comes later may still fit.
 */
class BoundedFileManager : public ForwardingFileManager {
public:
    explicit BoundedFileManager(std::shared_ptr<const FileManager> target);

    FileAttributes attributes(const std::filesystem::path& path) const override;
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const override;

private:
    std::shared_ptr<std::uint64_t> left_;
};

}  // namespace browsersweep::cli

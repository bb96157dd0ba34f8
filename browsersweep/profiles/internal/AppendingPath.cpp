#include "browsersweep/profiles/internal/AppendingPath.h"

namespace browsersweep {

std::filesystem::path appendingPath(const std::filesystem::path& folder,
                                    const std::filesystem::path& path) {
    return folder / path.relative_path();
}

}  // namespace browsersweep

#include "browsersweep/platform/internal/posix/ExchangedEntries.h"

#include <cstdio>

namespace browsersweep::posix {

bool exchangeEntries(const FileDescriptor& folder, const char* one, const char* other) noexcept {
    return ::renameatx_np(folder.number(), one, folder.number(), other, RENAME_SWAP) == 0;
}

}  // namespace browsersweep::posix

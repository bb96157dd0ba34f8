#include "browsersweep/platform/internal/posix/ExchangedEntries.h"

#include <cstdio>

namespace browsersweep::posix {

bool exchangeEntries(const FileDescriptor& folder, const char* one, const char* other) noexcept {
    return ::renameat2(folder.number(), one, folder.number(), other, RENAME_EXCHANGE) == 0;
}

}  // namespace browsersweep::posix

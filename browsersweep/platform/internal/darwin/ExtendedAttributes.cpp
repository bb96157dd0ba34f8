#include "browsersweep/platform/internal/posix/ExtendedAttributes.h"

#include <copyfile.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

void copyExtendedAttributes(const FileDescriptor& from, const FileDescriptor& to,
                            const std::filesystem::path& path) {
    if (::fcopyfile(from.number(), to.number(), nullptr, COPYFILE_ACL | COPYFILE_XATTR) != 0) {
        throwSystemError("cannot keep the attributes of", path);
    }
}

}  // namespace browsersweep::posix

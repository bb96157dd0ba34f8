#include "browsersweep/platform/internal/posix/ReplacementNames.h"

#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/UniqueString.h"

namespace browsersweep {
namespace {

constexpr std::string_view folderMark = ".browsersweep-";

/** What follows the two texts is what `uniqueString` gives. */
bool isUniqueAfter(std::string_view first, std::string_view second,
                   std::string_view name) noexcept {
    constexpr std::size_t uniqueLength = 32;
    const std::size_t length = first.size() + second.size();
    return name.size() == length + uniqueLength && name.starts_with(first) &&
           name.substr(first.size()).starts_with(second) &&
           name.find_first_not_of("0123456789abcdef", length) == std::string_view::npos;
}

}  // namespace

bool FileManager::isLeftByReplacing(std::string_view name, std::string_view replaced) noexcept {
    const bool isOfFile = name.starts_with('.') && name.substr(1).starts_with(replaced) &&
                          isUniqueAfter(replaced, ".", name.substr(1));
    return isOfFile || isUniqueAfter(replaced, folderMark, name);
}

namespace posix {

std::string newFileName(const std::string& replaced) {
    return "." + replaced + "." + uniqueString();
}

std::string newFolderName(const std::string& replaced) {
    return replaced + std::string(folderMark) + uniqueString();
}

}  // namespace posix
}  // namespace browsersweep

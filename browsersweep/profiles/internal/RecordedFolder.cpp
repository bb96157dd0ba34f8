#include "browsersweep/profiles/internal/RecordedFolder.h"

#include <algorithm>
#include <filesystem>

namespace browsersweep {
namespace {

using Reason = std::optional<std::string>;

// The system would take the text before it for the whole one.
bool holdsZeroByte(std::string_view text) noexcept {
    return text.find('\0') != std::string_view::npos;
}

bool leadsUp(std::string_view text) {
    const std::filesystem::path path(text);
    return std::find(path.begin(), path.end(), "..") != path.end();
}

Reason reasonAgainstPath(std::string_view path) {
    if (holdsZeroByte(path)) {
        return "the path of its folder holds a zero byte";
    }
    return leadsUp(path) ? Reason("the path of its folder leads upwards") : std::nullopt;
}

}  // namespace

std::optional<std::string> reasonAgainstName(std::string_view name) {
    if (name.empty()) {
        return "the name of its folder is empty";
    }
    if (name == "." || name == "..") {
        return "the name of its folder stands for another folder";
    }
    if (name.find('/') != std::string_view::npos) {
        return "the name of its folder is a path";
    }
    return holdsZeroByte(name) ? Reason("the name of its folder holds a zero byte") : std::nullopt;
}

std::optional<std::string> reasonAgainstRelativePath(std::string_view path) {
    if (path.find_first_not_of('/') == std::string_view::npos) {
        return "the path of its folder is empty";
    }
    return reasonAgainstPath(path);
}

std::optional<std::string> reasonAgainstAbsolutePath(std::string_view path) {
    if (path.substr(0, 1) != "/") {
        return "the path of its folder is not absolute, though recorded as such";
    }
    return reasonAgainstPath(path);
}

}  // namespace browsersweep

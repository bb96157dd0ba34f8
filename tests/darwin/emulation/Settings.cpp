#include "tests/darwin/emulation/Settings.h"

#include <cstdlib>

namespace browsersweep::emulation {
namespace {

std::vector<std::string> partsOf(const char* variable, char separator) {
    const char* const value = std::getenv(variable);
    std::string_view rest = value == nullptr ? "" : value;
    std::vector<std::string> parts;
    while (!rest.empty()) {
        const auto end = rest.find(separator);
        if (end != 0) {
            parts.emplace_back(rest.substr(0, end));
        }
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return parts;
}

}  // namespace

bool isOn(std::string_view word) {
    for (const std::string& part : partsOf("DARWIN_EMULATION", ',')) {
        if (part == word) {
            return true;
        }
    }
    return false;
}

std::string valueOf(std::string_view name, std::string_view otherwise) {
    for (const std::string& part : partsOf("DARWIN_EMULATION", ',')) {
        if (part.size() > name.size() && part.substr(0, name.size()) == name &&
            part[name.size()] == '=') {
            return part.substr(name.size() + 1);
        }
    }
    return std::string(otherwise);
}

std::vector<std::string> protectedFolders() {
    return partsOf("DARWIN_PROTECTED", ':');
}

std::vector<std::string> datalessFolders() {
    return partsOf("DARWIN_DATALESS", ':');
}

}  // namespace browsersweep::emulation

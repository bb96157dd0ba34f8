#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/UTF16.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/profiles/internal/AppendingPath.h"

namespace browsersweep {
namespace {

constexpr std::string_view firefoxFolder = "Firefox";
constexpr std::string_view profilePrefix = "Profile";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

IniFile decode(const Bytes& contents) {
    std::string_view text(reinterpret_cast<const char*>(contents.data()), contents.size());
    if (!isUTF8(text)) {
        throw DecodingError(DecodingError::Kind::dataCorrupted, "profiles.ini is not UTF-8 text");
    }
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark) {
        text.remove_prefix(byteOrderMark.size());
    }
    return IniFile(text);
}

bool isSet(const IniFile::Section& section, std::string_view key) {
    return section.find(key) == "1";
}

}  // namespace

std::vector<std::shared_ptr<const BrowserProfile>> FirefoxProfileReader::profiles() const {
    const std::filesystem::path file =
        directoryProvider()->applicationSupportDirectory() / firefoxFolder / "profiles.ini";
    if (!fileManager()->fileExists(file).isFile()) {
        return {};
    }
    const IniFile iniFile = decode(fileManager()->contents(file.lexically_normal()));
    std::vector<std::shared_ptr<const BrowserProfile>> profiles;
    for (std::size_t number = 0; number < iniFile.count(); ++number) {
        const IniFile::Section section = iniFile.section(number);
        auto profile = section.name().starts_with(profilePrefix) ? makeProfile(section) : nullptr;
        if (profile) {
            profiles.push_back(std::move(profile));
        }
    }
    return profiles;
}

std::shared_ptr<const BrowserProfile> FirefoxProfileReader::makeProfile(
    const IniFile::Section& section) const {
    std::optional<std::string> name = section.find("Name");
    const std::optional<std::string> path = section.find("Path");
    if (!name || !path) {
        return nullptr;
    }
    const bool isRelative = isSet(section, "IsRelative");
    return std::make_shared<FirefoxProfile>(
        std::move(name), isSet(section, "Default"), isRelative,
        isRelative ? appendingPath(firefoxFolder, *path) : std::filesystem::path(*path), home_,
        *path);
}

}  // namespace browsersweep

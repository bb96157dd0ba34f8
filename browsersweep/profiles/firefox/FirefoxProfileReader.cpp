#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"

#include <string_view>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/UTF16.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/profiles/firefox/IniFile.h"
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

std::optional<std::string> find(const IniFile::Properties& properties, const std::string& key) {
    const auto found = properties.find(key);
    return found == properties.end() ? std::nullopt : std::optional(found->second);
}

bool isSet(const IniFile::Properties& properties, const std::string& key) {
    return find(properties, key) == "1";
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
    for (const auto& [section, properties] : iniFile.sections()) {
        if (section.compare(0, profilePrefix.size(), profilePrefix) != 0) {
            continue;
        }
        if (auto profile = makeProfile(properties)) {
            profiles.push_back(std::move(profile));
        }
    }
    return profiles;
}

std::shared_ptr<const BrowserProfile> FirefoxProfileReader::makeProfile(
    const std::map<std::string, std::string>& properties) const {
    std::optional<std::string> name = find(properties, "Name");
    const std::optional<std::string> path = find(properties, "Path");
    if (!name || !path) {
        return nullptr;
    }
    const bool isRelative = isSet(properties, "IsRelative");
    return std::make_shared<FirefoxProfile>(
        std::move(name), isSet(properties, "Default"), isRelative,
        isRelative ? appendingPath(firefoxFolder, *path) : std::filesystem::path(*path), home_,
        *path);
}

}  // namespace browsersweep

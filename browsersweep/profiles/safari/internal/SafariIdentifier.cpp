#include "browsersweep/profiles/safari/internal/SafariIdentifier.h"

#include <algorithm>
#include <cstddef>

namespace browsersweep {
namespace {

constexpr std::string_view pattern = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool fits(char expected, char letter) noexcept {
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    return expected == 'x' ? digits.find(letter) != std::string_view::npos : letter == expected;
}

char inCapital(char letter) noexcept {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

char inSmall(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

bool isSafariIdentifier(std::string_view text) noexcept {
    return std::equal(pattern.begin(), pattern.end(), text.begin(), text.end(), fits);
}

std::string inCapitals(std::string_view identifier) {
    std::string result(identifier);
    std::transform(result.begin(), result.end(), result.begin(), inCapital);
    return result;
}

std::string inSmallLetters(std::string_view identifier) {
    std::string result(identifier);
    std::transform(result.begin(), result.end(), result.begin(), inSmall);
    return result;
}

std::filesystem::path safariContainer(const std::filesystem::path& library) {
    return library / "Containers/com.apple.Safari/Data/Library";
}

std::filesystem::path safariProfileFolders(const std::filesystem::path& library) {
    return library / "Safari/Profiles";
}

std::filesystem::path safariWebsiteFolders(const std::filesystem::path& library) {
    return safariContainer(library) / "WebKit/WebsiteDataStore";
}

}  // namespace browsersweep

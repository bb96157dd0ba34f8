#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace browsersweep {

/** Whether a text is a UUID: hexadecimal digits in five groups. */
bool isSafariIdentifier(std::string_view text) noexcept;

/** @{ */
/** Safari's own folders write an identifier in capitals, WebKit's in small letters. */
std::string inCapitals(std::string_view identifier);
std::string inSmallLetters(std::string_view identifier);
/** @} */

/** Below Library: what lies in Safari's container. */
std::filesystem::path safariContainer(const std::filesystem::path& library);

/** Where the named profiles have a folder each: their history. */
std::filesystem::path safariProfileFolders(const std::filesystem::path& library);

/** Where they have another one each: the data of websites. */
std::filesystem::path safariWebsiteFolders(const std::filesystem::path& library);

}  // namespace browsersweep

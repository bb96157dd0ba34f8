#include "cli/ErrorText.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sqlite/SQLiteError.h"

#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

constexpr std::string_view noPermission = "no permission";

// clang-format off
constexpr std::array<std::pair<SQLiteError::Kind, std::string_view>, 5> sqliteKinds{{
    {SQLiteError::Kind::locked,     "locked by a running browser"},
    {SQLiteError::Kind::cannotOpen, noPermission},
    {SQLiteError::Kind::denied,     noPermission},
    {SQLiteError::Kind::damaged,    "not understood"},
    {SQLiteError::Kind::statement,  "not understood"},
}};
// clang-format on

std::string_view kindOf(const std::error_code& code) noexcept {
    if (code == std::errc::permission_denied || code == std::errc::operation_not_permitted ||
        code == std::errc::read_only_file_system) {
        return noPermission;
    }
    if (code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory) {
        return "nothing there";
    }
    if (code == std::errc::illegal_byte_sequence) {
        return "not understood";
    }
    return {};
}

std::string_view kindOf(const SQLiteError& error) noexcept {
    for (const auto& [kind, text] : sqliteKinds) {
        if (kind == error.kind()) {
            return text;
        }
    }
    return {};
}

std::string_view kindOf(const std::exception& error) noexcept {
    if (const auto* const file = dynamic_cast<const std::filesystem::filesystem_error*>(&error)) {
        return kindOf(file->code());
    }
    if (const auto* const sqlite = dynamic_cast<const SQLiteError*>(&error)) {
        return kindOf(*sqlite);
    }
    const bool isDecoding = dynamic_cast<const DecodingError*>(&error) != nullptr ||
                            dynamic_cast<const BinaryDecodingError*>(&error) != nullptr;
    return isDecoding ? "not understood" : "";
}

}  // namespace

std::string errorText(const std::exception& error) {
    const std::string_view kind = kindOf(error);
    const std::string message = printable(error.what());
    if (message.empty()) {
        return kind.empty() ? "an error without a message" : std::string(kind);
    }
    return kind.empty() ? message : std::string(kind) + ": " + message;
}

bool saysNoPermission(std::string_view text) noexcept {
    return text.substr(0, noPermission.size()) == noPermission;
}

}  // namespace browsersweep::cli

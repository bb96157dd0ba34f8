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

// SQLite's errors carry its message and no code, so its own fixed messages tell them apart.
constexpr std::array sqliteKinds{
    std::pair{std::string_view("locked"), std::string_view("locked by a running browser")},
    std::pair{std::string_view("unable to open"), noPermission},
    // What SQLite says once a database that could not be opened is closed again.
    std::pair{std::string_view("bad parameter or other API misuse"), noPermission},
    std::pair{std::string_view("readonly"), noPermission},
    std::pair{std::string_view("authorization denied"), noPermission},
    std::pair{std::string_view("access permission denied"), noPermission},
    std::pair{std::string_view("malformed"), std::string_view("not understood")},
    std::pair{std::string_view("not a database"), std::string_view("not understood")},
    std::pair{std::string_view("no such column"), std::string_view("not understood")},
    std::pair{std::string_view("no such table"), std::string_view("not understood")},
    std::pair{std::string_view("unsupported file format"), std::string_view("not understood")},
};

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

std::string_view kindOfSQLiteMessage(std::string_view message) noexcept {
    for (const auto& [part, kind] : sqliteKinds) {
        if (message.find(part) != std::string_view::npos) {
            return kind;
        }
    }
    return {};
}

std::string_view kindOf(const std::exception& error) noexcept {
    if (const auto* const file = dynamic_cast<const std::filesystem::filesystem_error*>(&error)) {
        return kindOf(file->code());
    }
    if (const auto* const sqlite = dynamic_cast<const SQLiteError*>(&error)) {
        return kindOfSQLiteMessage(sqlite->what());
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

#include "browsersweep/hosting/FailureKind.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

constexpr std::array<std::string_view, 6> names{"nothing there", "locked by a running browser",
                                                "no permission", "not understood",
                                                "cancelled",     ""};

template <typename Type>
bool is(const std::exception& error) noexcept {
    return dynamic_cast<const Type*>(&error) != nullptr;
}

// clang-format off
constexpr std::array sqliteKinds{
    std::pair{SQLiteError::Kind::locked,     FailureKind::locked},
    std::pair{SQLiteError::Kind::cannotOpen, FailureKind::noPermission},
    std::pair{SQLiteError::Kind::denied,     FailureKind::noPermission},
    std::pair{SQLiteError::Kind::damaged,    FailureKind::notUnderstood},
    std::pair{SQLiteError::Kind::statement,  FailureKind::notUnderstood},
};
// clang-format on

FailureKind kindOf(const std::error_code& code) noexcept {
    if (code == std::errc::permission_denied || code == std::errc::operation_not_permitted ||
        code == std::errc::read_only_file_system) {
        return FailureKind::noPermission;
    }
    if (code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory) {
        return FailureKind::nothingThere;
    }
    if (code == std::errc::illegal_byte_sequence) {
        return FailureKind::notUnderstood;
    }
    return FailureKind::other;
}

FailureKind kindOf(const SQLiteError& error) noexcept {
    for (const auto& [sqlite, kind] : sqliteKinds) {
        if (sqlite == error.kind()) {
            return kind;
        }
    }
    return FailureKind::other;
}

}  // namespace

FailureKind failureKind(const std::exception& error) noexcept {
    if (const auto* const file = dynamic_cast<const std::filesystem::filesystem_error*>(&error)) {
        return kindOf(file->code());
    }
    if (const auto* const sqlite = dynamic_cast<const SQLiteError*>(&error)) {
        return kindOf(*sqlite);
    }
    if (is<DecodingError>(error) || is<BinaryDecodingError>(error)) {
        return FailureKind::notUnderstood;
    }
    return is<OperationCancelled>(error) ? FailureKind::cancelled : FailureKind::other;
}

std::string_view displayName(FailureKind kind) noexcept {
    return names[static_cast<std::size_t>(kind)];
}

}  // namespace browsersweep

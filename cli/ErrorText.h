#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace browsersweep::cli {

/**
 * The text of an error for people and for the "error" keys: what kind of failure it is ("nothing
 * there", "locked by a running browser", "no permission", "not understood"), where that can be
 * told, and the error's own message. One line of UTF-8.
 */
std::string errorText(const std::exception& error);

/** Whether a text that errorText made says that a permission is missing. */
bool saysNoPermission(std::string_view text) noexcept;

}  // namespace browsersweep::cli

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace browsersweep {

/** Takes values off the front of what WebKit has encoded: numbers with the little end first. */
class WebKitText {
public:
    explicit WebKitText(std::string_view bytes) noexcept : bytes_(bytes) {}

    /** A number of so many bytes, at most eight; absent where the bytes end. */
    std::optional<std::uint64_t> number(std::size_t width) noexcept;

    /** A text in UTF-8: its length, a byte that tells how a letter is stored, and the letters. One
     * that is absent there is empty here. Absent where the bytes end, or are none. */
    std::optional<std::string> text();

    /** So many bytes as they are; absent where there are fewer. */
    std::optional<std::string_view> bytes(std::size_t count) noexcept;

private:
    std::string_view bytes_;
};

}  // namespace browsersweep

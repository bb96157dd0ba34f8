#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/Export.h"

namespace browsersweep {

/**
 * A text that is nearly always absent and then takes only a pointer: a cookie file holds hundreds
 * of thousands of places for comments and hardly a comment. Copies are deep.
 */
class BROWSERSWEEP_EXPORT OptionalText {
public:
    OptionalText() = default;
    explicit OptionalText(std::string text)
        : text_(std::make_unique<std::string>(std::move(text))) {}
    OptionalText(const OptionalText& other)
        : text_(other.text_ ? std::make_unique<std::string>(*other.text_) : nullptr) {}
    OptionalText& operator=(const OptionalText& other) { return *this = OptionalText(other); }
    OptionalText(OptionalText&&) noexcept = default;
    OptionalText& operator=(OptionalText&&) noexcept = default;
    ~OptionalText() = default;

    /** Replaces the text. */
    OptionalText& operator=(std::string text) { return *this = OptionalText(std::move(text)); }

    bool isPresent() const noexcept { return text_ != nullptr; }

    /** The text; empty where it is absent. */
    std::string_view value() const noexcept {
        return text_ ? std::string_view(*text_) : std::string_view();
    }

    friend bool operator==(const OptionalText& a, const OptionalText& b) noexcept {
        return a.isPresent() == b.isPresent() && a.value() == b.value();
    }

private:
    std::unique_ptr<std::string> text_;
};

}  // namespace browsersweep

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
    /** A text that is there, even if it is empty. */
    explicit OptionalText(std::string text)
        : text_(std::make_unique<std::string>(std::move(text))) {}
    /** @{ */
    /** Copies have a text of their own; one that was moved from is absent. */
    OptionalText(const OptionalText& other)
        : text_(other.text_ ? std::make_unique<std::string>(*other.text_) : nullptr) {}
    OptionalText& operator=(const OptionalText& other) { return *this = OptionalText(other); }
    OptionalText(OptionalText&&) noexcept = default;
    OptionalText& operator=(OptionalText&&) noexcept = default;
    /** @} */
    ~OptionalText() = default;

    /** Replaces the text. */
    OptionalText& operator=(std::string text) { return *this = OptionalText(std::move(text)); }

    /** Whether there is a text: an empty one is not an absent one. */
    bool isPresent() const noexcept { return text_ != nullptr; }

    /** The text; empty where it is absent. */
    std::string_view value() const noexcept {
        return text_ ? std::string_view(*text_) : std::string_view();
    }

    /** Whether both are absent, or both have the same text. */
    friend bool operator==(const OptionalText& a, const OptionalText& b) noexcept {
        return a.isPresent() == b.isPresent() && a.value() == b.value();
    }

private:
    std::unique_ptr<std::string> text_;
};

}  // namespace browsersweep

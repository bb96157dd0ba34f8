#include "cli/CharacterWidth.h"

#include <cwchar>  // first: <xlocale.h> declares what belongs to the headers that it comes after
#include <memory>
#include <type_traits>

#include <xlocale.h>

namespace browsersweep::cli {
namespace {

struct FreeLocale {
    void operator()(locale_t locale) const noexcept { ::freelocale(locale); }
};

using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

}  // namespace

// The system's own table, which a program that shall need no other library has at hand.
std::size_t characterWidth(char32_t codePoint) noexcept {
    static const Locale unicode(::newlocale(LC_CTYPE_MASK, "en_US.UTF-8", nullptr));
    const int width = ::wcwidth_l(static_cast<wchar_t>(codePoint), unicode.get());
    // What is younger than the table is shown as one box.
    return width < 0 ? 1 : static_cast<std::size_t>(width);
}

}  // namespace browsersweep::cli

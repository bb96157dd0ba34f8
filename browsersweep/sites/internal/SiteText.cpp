#include "browsersweep/sites/internal/SiteText.h"

#include <algorithm>
#include <string>

namespace browsersweep {
namespace {

char inSmall(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isOfLabel(char letter) noexcept {
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '-';
}

bool endsBefore(std::string_view text, std::size_t place) noexcept {
    return place == 0 || !isOfLabel(text[place - 1]);
}

bool endsAt(std::string_view text, std::size_t place) noexcept {
    const std::string_view rest = text.substr(std::min(place, text.size()));
    const bool isLonger = rest.size() > 1 && rest[0] == '.' && isOfLabel(rest[1]);
    return rest.empty() || (!isOfLabel(rest[0]) && !isLonger);
}

bool isNamedIn(std::string_view text, std::string_view name) noexcept {
    for (auto place = text.find(name); place != std::string_view::npos;
         place = text.find(name, place + 1)) {
        if (endsBefore(text, place) && endsAt(text, place + name.size())) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool namesSite(std::string_view bytes, const Site& site) {
    std::string text(bytes);
    std::transform(text.begin(), text.end(), text.begin(), inSmall);
    if (isNamedIn(text, site.name())) {
        return true;
    }
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());  // of UTF-16
    return isNamedIn(text, site.name());
}

bool namesAny(std::string_view bytes, const std::set<Site>& sites) {
    return std::any_of(sites.begin(), sites.end(),
                       [bytes](const Site& site) { return namesSite(bytes, site); });
}

}  // namespace browsersweep

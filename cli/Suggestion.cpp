#include "cli/Suggestion.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>
#include <numeric>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace browsersweep::cli {
namespace {

char lowercase(char c) noexcept {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/** How many letters must be added, dropped, changed or swapped with the next, letter case aside. */
std::size_t distance(std::string_view a, std::string_view b) {
    // The costs of the first letters of one word against those of the other: the last three rows.
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> cost(b.size() + 1);
    std::iota(cost.begin(), cost.end(), std::size_t{0});
    const auto isSame = [&](std::size_t i, std::size_t j) {
        return lowercase(a[i - 1]) == lowercase(b[j - 1]);
    };
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::swap(beforeLast, last);
        std::swap(last, cost);
        cost[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = last[j - 1] + (isSame(i, j) ? 0 : 1);
            cost[j] = std::min({last[j] + 1, cost[j - 1] + 1, changed});
            if (i > 1 && j > 1 && isSame(i, j - 1) && isSame(i - 1, j)) {
                cost[j] = std::min(cost[j], beforeLast[j - 2] + 1);
            }
        }
    }
    return cost[b.size()];
}

/** How far from a known word another may be to be taken for it. */
std::size_t tolerated(std::string_view known) noexcept {
    return std::max<std::size_t>(1, known.size() / 3);
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    const auto isSame = [](char a, char b) { return lowercase(a) == lowercase(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), isSame) != text.end();
}

/** The first known word that holds this one, such as "googleChrome" for "chrome". */
std::optional<std::string_view> containing(std::string_view part,
                                           const std::vector<std::string_view>& known) {
    constexpr std::size_t shortestPart = 3;
    if (part.size() < shortestPart) {
        return std::nullopt;
    }
    const auto found = std::find_if(known.begin(), known.end(), [part](std::string_view word) {
        return containsIgnoringCase(word, part);
    });
    return found == known.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

std::optional<std::string_view> closest(std::string_view word,
                                        const std::vector<std::string_view>& known) {
    // The work is quadratic, and words of very different lengths are never close.
    const bool isTooLong = std::all_of(known.begin(), known.end(), [word](std::string_view other) {
        return word.size() > other.size() + tolerated(other);
    });
    if (word.empty() || isTooLong) {
        return std::nullopt;
    }
    std::string_view best;
    std::size_t shortest = std::numeric_limits<std::size_t>::max();
    for (const std::string_view other : known) {
        if (const std::size_t found = distance(word, other); found < shortest) {
            best = other;
            shortest = found;
        }
    }
    return shortest <= tolerated(best) ? std::optional(best) : containing(word, known);
}

std::string suggestion(std::string_view word, const std::vector<std::string_view>& known) {
    if (const auto meant = closest(word, known)) {
        return fmt::format("did you mean {}?", *meant);
    }
    return fmt::format("it must be one of {}", fmt::join(known, ", "));
}

}  // namespace browsersweep::cli

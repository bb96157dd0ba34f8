#include "cli/Suggestion.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace browsersweep::cli {
namespace {

char lowercase(char c) noexcept {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/** How many letters must be added, dropped, changed or swapped with the next, letter case aside. */
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> cost(a.size() + 1,
                                               std::vector<std::size_t>(b.size() + 1));
    std::iota(cost[0].begin(), cost[0].end(), std::size_t{0});
    const auto isSame = [&](std::size_t i, std::size_t j) {
        return lowercase(a[i - 1]) == lowercase(b[j - 1]);
    };
    for (std::size_t i = 1; i <= a.size(); ++i) {
        cost[i][0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = cost[i - 1][j - 1] + (isSame(i, j) ? 0 : 1);
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, changed});
            if (i > 1 && j > 1 && isSame(i, j - 1) && isSame(i - 1, j)) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[a.size()][b.size()];
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
    constexpr std::size_t longestWord = 64;  // nobody mistypes more, and the work is quadratic
    if (word.empty() || known.empty() || word.size() > longestWord) {
        return std::nullopt;
    }
    const auto best = *std::min_element(known.begin(), known.end(),
                                        [word](std::string_view a, std::string_view b) {
                                            return distance(word, a) < distance(word, b);
                                        });
    const auto tolerated = std::max<std::size_t>(1, best.size() / 3);
    return distance(word, best) <= tolerated ? std::optional(best) : containing(word, known);
}

std::string suggestion(std::string_view word, const std::vector<std::string_view>& known) {
    if (const auto meant = closest(word, known)) {
        return fmt::format("did you mean {}?", *meant);
    }
    return fmt::format("it must be one of {}", fmt::join(known, ", "));
}

}  // namespace browsersweep::cli

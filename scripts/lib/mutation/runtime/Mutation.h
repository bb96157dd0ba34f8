#pragma once

#include <concepts>
#include <type_traits>

/** What changed sources ask: whether a mutant is the one that this process was started for. */
namespace browsersweep::mutation {

/** Whether this mutant acts. That it was asked for is noted where a map is made. */
bool chosen(unsigned number) noexcept;

/** The same in what a compiler may work out too: it gets the original. */
constexpr bool chosenWhereRun(unsigned number) noexcept {
    return !std::is_constant_evaluated() && chosen(number);
}

// Versions of the formatter differ on what follows a requirement.
// clang-format off

/** An empty value in the place of an argument. */
template <typename T>
requires std::default_initializable<std::remove_cvref_t<T>> std::remove_cvref_t<T> emptyOf() {
    return std::remove_cvref_t<T>{};
}

/** The same for what is passed by reference. */
template <typename T>
requires std::default_initializable<std::remove_const_t<T>> T& emptyLike(T& /*unused*/) {
    static std::remove_const_t<T> value{};
    return value;
}

// clang-format on

}  // namespace browsersweep::mutation

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "browsersweep/binarycoding/BinaryNumber.h"

// Outside the library's namespace: g++ leaves out what the function and the type have in common.
namespace browsersweep_type_name {

/** The compiler's name of this very function, which has the type's name in it. */
template <typename T>
std::string_view functionName() {
    return static_cast<const char*>(__PRETTY_FUNCTION__);
}

}  // namespace browsersweep_type_name

namespace browsersweep {

/** The name of a type with its namespaces, as error messages show it. */
template <typename T>
std::string qualifiedTypeName() {
    const std::string_view function = browsersweep_type_name::functionName<T>();
    const std::size_t start = function.find("T = ") + 4;
    return std::string(function.substr(start, function.find_first_of(";]", start) - start));
}

/** An integer by its size and sign, such as "std::uint32_t", whichever alias it came by. */
template <BinaryInteger T>
std::string qualifiedTypeName() {
    const std::string bits = std::to_string(8 * sizeof(T));
    return (std::unsigned_integral<T> ? "std::uint" : "std::int") + bits + "_t";
}

/** A text without the template that compilers spell out. */
template <std::same_as<std::string> T>
std::string qualifiedTypeName() {
    return "std::string";
}

}  // namespace browsersweep

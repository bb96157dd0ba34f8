#pragma once

#include <stdexcept>

namespace browsersweep::fuzz {

/** A rule of the library that an input broke. */
class BrokenRule : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/** Throws `BrokenRule` where the rule does not hold. */
inline void require(bool holds, const char* rule) {
    if (!holds) {
        throw BrokenRule(rule);
    }
}

}  // namespace browsersweep::fuzz

#pragma once

#include <cstddef>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {

/**
 * How many values and bytes one call reads of property lists within property lists. A limit of
 * their depth is not enough: each may hold the next one many times over, so that a few hundred
 * bytes would take years.
 */
class NestingBudget {
public:
    /** Enough for every value of a database. */
    static constexpr std::size_t ofValue = std::size_t{1} << 24;
    /** Enough for a whole file. */
    static constexpr std::size_t ofFile = std::size_t{1} << 26;

    explicit NestingBudget(std::size_t amount) : left_(amount) {}

    /** Throws a `DecodingError` of the kind `dataCorrupted` where there is less than that left. */
    void take(std::size_t amount) {
        if (amount > left_) {
            throw DecodingError::dataCorrupted("property lists within one add up to too much");
        }
        left_ -= amount;
    }

private:
    std::size_t left_;
};

}  // namespace browsersweep

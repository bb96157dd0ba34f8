#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"

namespace browsersweep {

/** The keys and list positions ("Index 3") that lead from a document's root to a value. */
using CodingPath = std::vector<std::string>;

/** A document (JSON or property list) that is not what its reader needs. */
class BROWSERSWEEP_EXPORT DecodingError : public std::runtime_error {
public:
    /** What is wrong with the document. */
    enum class Kind {
        dataCorrupted,  ///< not a document at all, or a value that nothing can be made of
        keyNotFound,    ///< a required key is missing
        valueNotFound,  ///< a required key holds null
        typeMismatch,   ///< a value of another type than the one needed
    };

    /** `what()` is the description, followed by the path where the path is not empty. */
    DecodingError(Kind kind, std::string_view description, CodingPath codingPath = {});

    /** The error of a document, or a value in it, that nothing can be made of. */
    static DecodingError dataCorrupted(std::string_view description) {
        return {Kind::dataCorrupted, description};
    }

    /** What is wrong, for a program to tell apart. */
    Kind kind() const noexcept { return kind_; }
    /** What is wrong, in English, without the place. */
    const std::string& description() const noexcept { return description_; }
    /** Where it is wrong; empty for the document as a whole. */
    const CodingPath& codingPath() const noexcept { return codingPath_; }

    /** The same error seen from one level further out. */
    DecodingError below(std::string_view key) const;

private:
    Kind kind_;
    std::string description_;
    CodingPath codingPath_;
};

/** Decodes what lies under a key: an error that leaves the function has the key in its path. */
template <typename Decode>
auto decodingBelow(std::string_view key, Decode decode) {
    try {
        return decode();
    } catch (const DecodingError& error) {
        throw error.below(key);
    }
}

}  // namespace browsersweep

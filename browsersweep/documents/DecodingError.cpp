#include "browsersweep/documents/DecodingError.h"

#include <utility>

namespace browsersweep {
namespace {

std::string message(std::string_view description, const CodingPath& codingPath) {
    std::string text(description);
    for (std::size_t index = 0; index < codingPath.size(); ++index) {
        text += index == 0 ? " (at " : " > ";
        text += codingPath[index];
    }
    return codingPath.empty() ? text : text + ")";
}

}  // namespace

DecodingError::DecodingError(Kind kind, std::string_view description, CodingPath codingPath)
    : std::runtime_error(message(description, codingPath)),
      kind_(kind),
      description_(description),
      codingPath_(std::move(codingPath)) {}

DecodingError DecodingError::below(std::string_view key) const {
    CodingPath path{std::string(key)};
    path.insert(path.end(), codingPath_.begin(), codingPath_.end());
    return {kind_, description_, std::move(path)};
}

}  // namespace browsersweep

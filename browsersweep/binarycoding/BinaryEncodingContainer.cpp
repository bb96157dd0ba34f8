#include "browsersweep/binarycoding/BinaryEncodingContainer.h"

#include <string>

#include "browsersweep/binarycoding/BinaryEncodingError.h"

namespace browsersweep {

void BinaryEncodingContainer::encodeString(std::string_view text, StringEncoding encoding,
                                           std::optional<std::uint8_t> terminator) {
    const std::optional<std::string> encoded = encodedText(text, encoding);
    if (!encoded) {
        throw BinaryEncodingError::incompatibleStringEncoding(
            "The string " + std::string(text) +
            " could not be encoded as data using the encoding " +
            std::string(displayName(encoding)) + ".");
    }
    std::vector<std::uint8_t>& data = storage_->data;
    data.insert(data.end(), encoded->begin(), encoded->end());
    if (terminator) {
        data.push_back(*terminator);
    }
}

}  // namespace browsersweep

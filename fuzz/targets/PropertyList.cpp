#include "browsersweep/documents/propertylist/PropertyList.h"

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/safari/internal/SafariPermissions.h"

#include "fuzz/targets/Rule.h"
#include "fuzz/targets/Targets.h"

namespace browsersweep::fuzz {
namespace {

std::optional<PropertyList> parsed(BytesView input) {
    try {
        return PropertyList::parse(input);
    } catch (const DecodingError& error) {
        require(error.kind() == DecodingError::Kind::dataCorrupted, "what is no list is corrupted");
        return std::nullopt;
    }
}

}  // namespace

void propertyList(BytesView input) {
    const auto list = parsed(input);
    if (!list) {
        return;
    }
    require(list->depth() <= PropertyList::maximumDepth, "no list is deeper than the limit");
    for (const URL& site : allowedSites(*list)) {
        require(!site.absoluteString().empty(), "no address is empty");
    }
    const Bytes written = list->binaryData();
    const auto again = parsed(written);
    require(again.has_value(), "what was written can be read");
    require(*again == *list, "what was written is the same value");
    require(again->binaryData() == written, "writing it again gives the same bytes");
}

}  // namespace browsersweep::fuzz

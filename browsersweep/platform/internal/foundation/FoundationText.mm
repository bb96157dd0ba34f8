#include "browsersweep/platform/internal/foundation/FoundationText.h"

#include "browsersweep/platform/internal/foundation/Ownership.h"

namespace browsersweep {

NSString* foundationString(std::string_view text) {
    NSString* string = autoreleased([[NSString alloc] initWithBytes:text.data()
                                                             length:text.size()
                                                           encoding:NSUTF8StringEncoding]);
    return string != nil ? string : @"";
}

std::string utf8(NSString* text) {
    NSData* bytes = [text dataUsingEncoding:NSUTF8StringEncoding];
    return {static_cast<const char*>([bytes bytes]), [bytes length]};
}

}  // namespace browsersweep

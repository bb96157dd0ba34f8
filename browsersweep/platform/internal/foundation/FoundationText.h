#pragma once

#include <string>
#include <string_view>

#import <Foundation/Foundation.h>

namespace browsersweep {

/** UTF-8 as an autoreleased string; text that is not UTF-8 is the empty string. */
NSString* foundationString(std::string_view text);

/** A string as UTF-8. */
std::string utf8(NSString* text);

}  // namespace browsersweep

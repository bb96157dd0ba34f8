// What the Foundation backend calls and GNUstep does not declare. Included before every
// Objective-C++ source of the library where it is built against GNUstep.
#pragma once

#ifdef __OBJC__

#import <Foundation/Foundation.h>

@interface NSString (GNUstepStandIns)
- (BOOL)localizedCaseInsensitiveContainsString:(NSString*)pattern;
@end

@interface NSHTTPCookieStorage (GNUstepStandIns)
+ (NSHTTPCookieStorage*)sharedCookieStorageForGroupContainerIdentifier:(NSString*)identifier;
@end

#endif

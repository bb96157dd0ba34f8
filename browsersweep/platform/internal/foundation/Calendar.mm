#include "browsersweep/platform/internal/Calendar.h"

#import <Foundation/Foundation.h>

namespace browsersweep {

Date localMidnightOf1601() {
    @autoreleasepool {
        // The system's zone is kept by the process; a change of it since then counts.
        [NSTimeZone resetSystemTimeZone];
        NSCalendar* calendar = [[[NSCalendar alloc]
            initWithCalendarIdentifier:NSCalendarIdentifierGregorian] autorelease];
        [calendar setTimeZone:[NSTimeZone systemTimeZone]];
        NSDateComponents* components = [[[NSDateComponents alloc] init] autorelease];
        [components setYear:1601];
        [components setMonth:1];
        [components setDay:1];
        return dateFromReferenceSeconds(
            [[calendar dateFromComponents:components] timeIntervalSinceReferenceDate]);
    }
}

}  // namespace browsersweep

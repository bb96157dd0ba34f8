#include "browsersweep/platform/internal/Calendar.h"

#include "browsersweep/platform/internal/foundation/Ownership.h"

namespace browsersweep {

Date localMidnightOf1601() {
    @autoreleasepool {
        // The system's zone is kept by the process; a change of it since then counts.
        [NSTimeZone resetSystemTimeZone];
        NSCalendar* calendar = autoreleased(
            [[NSCalendar alloc] initWithCalendarIdentifier:NSCalendarIdentifierGregorian]);
        [calendar setTimeZone:[NSTimeZone systemTimeZone]];
        NSDateComponents* components = autoreleased([[NSDateComponents alloc] init]);
        [components setYear:1601];
        [components setMonth:1];
        [components setDay:1];
        return dateFromReferenceSeconds(
            [[calendar dateFromComponents:components] timeIntervalSinceReferenceDate]);
    }
}

}  // namespace browsersweep

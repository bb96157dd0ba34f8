#include "browsersweep/platform/internal/Calendar.h"

#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include "browsersweep/base/FatalError.h"

namespace browsersweep {

Date localMidnightOf1601() {
    UErrorCode status = U_ZERO_ERROR;
    // Detected anew at each call: ICU's default zone is fixed at its first use.
    icu::GregorianCalendar calendar(icu::TimeZone::detectHostTimeZone(), status);
    calendar.clear();
    calendar.set(1601, UCAL_JANUARY, 1);
    const UDate milliseconds = calendar.getTime(status);
    if (U_FAILURE(status) != 0) {
        fatalError("ICU has no calendar");
    }
    return dateFrom1970Seconds(milliseconds / 1000.0);
}

}  // namespace browsersweep

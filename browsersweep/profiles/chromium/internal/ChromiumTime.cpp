#include "browsersweep/profiles/chromium/internal/ChromiumTime.h"

#include "browsersweep/platform/internal/Calendar.h"
#include "browsersweep/profiles/internal/MicrosecondText.h"

namespace browsersweep {

std::string chromiumTimeText(Date date, Date epoch) {
    return microsecondText((date - epoch).count());
}

std::string chromiumTimeText(Date date) {
    static const Date epoch = localMidnightOf1601();
    return chromiumTimeText(date, epoch);
}

}  // namespace browsersweep

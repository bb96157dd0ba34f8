#include "browsersweep/profiles/firefox/internal/FirefoxTime.h"

#include "browsersweep/profiles/internal/MicrosecondText.h"

namespace browsersweep {

std::string firefoxTimeText(Date date) {
    return microsecondText(secondsSince1970(date));
}

}  // namespace browsersweep

#include "browsersweep/profiles/firefox/FirefoxTime.h"

#include "browsersweep/profiles/MicrosecondText.h"

namespace browsersweep {

std::string firefoxTimeText(Date date) {
    return microsecondText(secondsSince1970(date));
}

}  // namespace browsersweep

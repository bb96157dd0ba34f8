#include "browsersweep/profiles/chromium/OperaProfileReader.h"

#include <optional>

#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"

namespace browsersweep {

std::vector<std::shared_ptr<const BrowserProfile>> OperaProfileReader::profiles() const {
    return {std::make_shared<ChromiumBasedProfile>(std::nullopt, Browser::opera, true,
                                                   "com.operasoftware.Opera", home_)};
}

}  // namespace browsersweep

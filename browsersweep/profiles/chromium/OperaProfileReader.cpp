#include "browsersweep/profiles/chromium/OperaProfileReader.h"

#include <optional>

#include "browsersweep/base/internal/BrowserTable.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"

namespace browsersweep {

std::vector<std::shared_ptr<const BrowserProfile>> OperaProfileReader::profiles() const {
    return {std::make_shared<ChromiumBasedProfile>(
        std::nullopt, Browser::opera, true, rowOf(Browser::opera).applicationSupportFolder, home_)};
}

}  // namespace browsersweep

#include "browsersweep/profiles/safari/SafariProfileReader.h"

#include "browsersweep/profiles/safari/SafariProfile.h"

namespace browsersweep {

std::vector<std::shared_ptr<const BrowserProfile>> SafariProfileReader::profiles() const {
    return {std::make_shared<SafariProfile>(home_)};
}

}  // namespace browsersweep

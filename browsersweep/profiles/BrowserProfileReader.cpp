#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

BrowserProfileReader::~BrowserProfileReader() = default;

}  // namespace browsersweep

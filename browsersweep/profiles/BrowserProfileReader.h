#pragma once

#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

/** Lists the profiles of one browser. It only reads. */
class BROWSERSWEEP_EXPORT BrowserProfileReader {
public:
    BrowserProfileReader() = default;
    virtual ~BrowserProfileReader();

    /** The profiles, in the reader's own order. Throws the error of reading or decoding the list.
     */
    virtual std::vector<std::shared_ptr<const BrowserProfile>> profiles() const = 0;

protected:
    /** @{ */
    /** For derived classes: the base alone is never copied. */
    BrowserProfileReader(const BrowserProfileReader&) = default;
    BrowserProfileReader(BrowserProfileReader&&) = default;
    BrowserProfileReader& operator=(const BrowserProfileReader&) = default;
    BrowserProfileReader& operator=(BrowserProfileReader&&) = default;
    /** @} */
};

}  // namespace browsersweep

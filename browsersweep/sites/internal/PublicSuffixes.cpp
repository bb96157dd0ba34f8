#include "browsersweep/sites/internal/PublicSuffixes.h"

#include <libpsl.h>

namespace browsersweep {

std::string registrableDomain(const std::string& host) {
    // The list is part of the library's own data: nothing is loaded, and nothing is to be freed.
    const char* const domain = psl_registrable_domain(psl_builtin(), host.c_str());
    return domain == nullptr ? host : domain;
}

}  // namespace browsersweep

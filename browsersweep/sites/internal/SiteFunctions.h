#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "browsersweep/sites/SiteSelection.h"
#include "browsersweep/sites/internal/SiteMatcher.h"

struct sqlite3;

namespace browsersweep {

/** Addresses whose rows stay whatever is asked for, such as those that are bookmarked. */
using ProtectedAddresses = std::set<std::string, std::less<>>;

/**
 * The questions that statements ask about a selection: `namesSite(form, text, ...)` and
 * `isProtected(address)`; `md5Of(text)`, in small hexadecimal digits, by which browsers name files;
 * and `lengths(value, ...)`, the sum of what SQLite's own `length` gives for each. No view, trigger
 * or index of a schema can ask them. Must outlive the statements.
 */
class SiteFunctions {
public:
    /** Makes them known to a database. Throws `SQLiteError`. */
    SiteFunctions(sqlite3* database, const SiteSelection& selection,
                  ProtectedAddresses protectedAddresses);
    SiteFunctions(const SiteFunctions&) = delete;
    SiteFunctions& operator=(const SiteFunctions&) = delete;
    ~SiteFunctions();

    /** Whether a site of the selection is named in a text of this form. */
    bool names(SiteForm form, std::string_view text);

    /** Whether what belongs to the address stays. */
    bool isProtected(std::string_view address) const;

private:
    sqlite3* database_;
    SiteMatcher matcher_;
    ProtectedAddresses protectedAddresses_;
};

}  // namespace browsersweep

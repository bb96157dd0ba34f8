#pragma once

#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"

namespace browsersweep {

/** What the file "Local State" of a Chromium-based browser says of its profiles. */
struct BROWSERSWEEP_EXPORT LocalState {
    /** One entry of "info_cache". */
    struct BROWSERSWEEP_EXPORT InfoCache {
        std::string folder;                      ///< the key: the profile folder's name
        bool isConsentedPrimaryAccount = false;  ///< key "is_consented_primary_account"
        std::string name;                        ///< for people

        /** Whether all fields are equal. */
        friend bool operator==(const InfoCache&, const InfoCache&) = default;
    };

    std::vector<InfoCache> infoCache;             ///< in the file's order
    std::vector<std::string> lastActiveProfiles;  ///< folder names

    /** Reads the file's bytes. Throws a `DecodingError`; nothing is salvaged from half a file. */
    static LocalState decode(BytesView bytes);

    /**
     * Whether an entry is a main profile. Where any entry is the consented primary account, exactly
     * those are; otherwise the first last active folder is, or the first entry if there is none.
     */
    bool isPrimary(const InfoCache& entry) const noexcept;

    /** The same for every entry of `infoCache`, in time that grows with their number. */
    std::vector<bool> primaryMarks() const;

    /** Whether all fields are equal. */
    friend bool operator==(const LocalState&, const LocalState&) = default;

private:
    bool hasConsent() const noexcept;
    bool isPrimary(const InfoCache& entry, bool anyConsent) const noexcept;
};

}  // namespace browsersweep

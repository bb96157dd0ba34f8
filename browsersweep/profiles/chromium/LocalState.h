#pragma once

#include <string>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"

namespace browsersweep {

/** The file "Local State" of a Chromium-based browser, with what it says of the profiles. */
struct BROWSERSWEEP_EXPORT LocalState {
    /** The profiles that the browser knows; key "profile". */
    struct BROWSERSWEEP_EXPORT Profile {
        /** What is recorded of one profile. */
        struct BROWSERSWEEP_EXPORT InfoCache {
            bool isConsentedPrimaryAccount = false;  ///< key "is_consented_primary_account"
            std::string name;                        ///< for people; key "name"

            /** Whether all fields are equal. */
            friend bool operator==(const InfoCache&, const InfoCache&) = default;
        };

        /** The name of a profile's folder, and what is recorded of it. */
        using Entry = std::pair<std::string, InfoCache>;

        std::vector<Entry> infoCache;  ///< in the file's order, every folder once; key "info_cache"
        std::vector<std::string> lastActiveProfiles;  ///< folders; key "last_active_profiles"

        /**
         * Whether an entry is a main profile. Where any entry is the consented primary account,
         * exactly those are; otherwise the first last active folder is, or the first entry if there
         * is none.
         */
        bool isPrimary(const Entry& entry) const noexcept;

        /** The same for every entry of `infoCache`, in time that grows with their number. */
        std::vector<bool> primaryMarks() const;

        /** Whether all fields are equal. */
        friend bool operator==(const Profile&, const Profile&) = default;

    private:
        bool hasConsent() const noexcept;
        bool isPrimary(const Entry& entry, bool anyConsent) const noexcept;
    };

    Profile profile;  ///< key "profile"

    /** Reads the file's bytes. Throws a `DecodingError`; nothing is salvaged from half a file. */
    static LocalState decode(BytesView bytes);

    /** Whether all fields are equal. */
    friend bool operator==(const LocalState&, const LocalState&) = default;
};

}  // namespace browsersweep

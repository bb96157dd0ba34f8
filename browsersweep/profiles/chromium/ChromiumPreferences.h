#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/base/URL.h"

namespace browsersweep {

/** What the file "Preferences" of a Chromium-based profile says of notification permissions. */
struct BROWSERSWEEP_EXPORT ChromiumPreferences {
    /** One site pattern, and what is set for it. */
    struct BROWSERSWEEP_EXPORT Notification {
        std::string sitePattern;   ///< the key, such as "https://mail.example.com:443,*"
        std::int64_t setting = 0;  ///< `allowed`, or another number

        /** Whether all fields are equal. */
        friend bool operator==(const Notification&, const Notification&) = default;
    };

    /** The setting that allows notifications. Any other blocks them or asks. */
    static constexpr std::int64_t allowed = 1;

    std::vector<Notification> notifications;  ///< in the file's order

    /** Reads the file's bytes. Throws a `DecodingError`, also for one entry that lacks a key. */
    static ChromiumPreferences decode(BytesView bytes);

    /**
     * The addresses that may send notifications: the pieces between the commas of the allowed site
     * patterns that are not "*" and parse as addresses.
     */
    std::vector<URL> allowedSites() const;
};

}  // namespace browsersweep

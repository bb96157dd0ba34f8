#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/base/URL.h"

namespace browsersweep {

/** The file "Preferences" of a Chromium-based profile, as far as it is about notifications. */
struct BROWSERSWEEP_EXPORT ChromiumPreferences {
    /** Key "profile". */
    struct BROWSERSWEEP_EXPORT Profile {
        /** Key "content_settings". */
        struct BROWSERSWEEP_EXPORT ContentSettings {
            /** Key "exceptions": what is set for single sites. */
            struct BROWSERSWEEP_EXPORT CSException {
                /** What is set for one site pattern. */
                struct BROWSERSWEEP_EXPORT NotificationValue {
                    std::int64_t setting = 0;  ///< `allowed`, or another number; key "setting"
                    std::string lastModified;  ///< as the file has it; key "last_modified"

                    /** Whether all fields are equal. */
                    friend bool operator==(const NotificationValue&,
                                           const NotificationValue&) = default;
                };

                /** A site pattern, such as "https://mail.example.com:443,*", and its value. */
                using Entry = std::pair<std::string, NotificationValue>;

                /** In the file's order, every pattern once; key "notifications". */
                std::vector<Entry> notifications;

                /** Whether all fields are equal. */
                friend bool operator==(const CSException&, const CSException&) = default;
            };

            CSException exceptions;  ///< key "exceptions"

            /** Whether all fields are equal. */
            friend bool operator==(const ContentSettings&, const ContentSettings&) = default;
        };

        ContentSettings contentSettings;  ///< key "content_settings"

        /** Whether all fields are equal. */
        friend bool operator==(const Profile&, const Profile&) = default;
    };

    /** The setting that allows notifications. Any other blocks them or asks. */
    static constexpr std::int64_t allowed = 1;

    Profile profile;  ///< key "profile"

    /** Reads the file's bytes. Throws a `DecodingError`, also for one entry that lacks a key. */
    static ChromiumPreferences decode(BytesView bytes);

    /**
     * The addresses that may send notifications: the pieces between the commas of the allowed site
     * patterns that are not "*" and parse as addresses.
     */
    std::vector<URL> allowedSites() const;

    /** Whether all fields are equal. */
    friend bool operator==(const ChromiumPreferences&, const ChromiumPreferences&) = default;
};

}  // namespace browsersweep

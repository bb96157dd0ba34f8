#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace browsersweep {

/** The forms in which browsers write down whose something is. */
enum class SiteForm {
    address,             ///< "https://www.example.com/page"; also blob: and filesystem: of such
    host,                ///< "www.example.com", perhaps with a leading dot or a port
    reversedHost,        ///< "moc.elpmaxe.www." as Firefox sorts by
    storageKey,          ///< Chromium: "https://a.com/^0https://b.com" (a, embedded in b)
    originIdentifier,    ///< Chromium: "https_www.example.com_0"
    contentSettingsKey,  ///< Chromium: "https://www.example.com:443,https://top.com:443" or "*"
    networkKey,          ///< Chromium: "https://top.com https://frame.com https://a.com/file"
    firefoxOrigin,       ///< Firefox: "https://a.com^partitionKey=%28https%2Cb.com%29"
    firefoxFolder,       ///< Firefox: "https+++a.com+8080^partitionKey=%28https%2Cb.com%29"
    originAttributes,    ///< Firefox: "^userContextId=1&partitionKey=%28https%2Cb.com%29"
    hostOrAddress,       ///< either of the two
    message,             ///< a protocol buffer: the hosts and addresses among its texts
    bytes,               ///< a property list, or bytes of no known form: the addresses in them
};

/**
 * The hosts that a text of this form names, in small letters and without dots around them, as
 * `Site::ofHost` takes them: none where it names no web site, as an extension's own origin does
 * not; two where a site is embedded in another. Throws a `DecodingError` for bytes that
 * are property lists within property lists without end.
 */
std::vector<std::string> hostsIn(SiteForm form, std::string_view text);

/** The host of a web address, in small letters; empty where it is none. */
std::string hostOfAddress(std::string_view address);

/** A host's name in the one way it is compared; empty where the text is none. */
std::string plainHost(std::string_view host);

}  // namespace browsersweep

#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/Export.h"

namespace browsersweep {

/**
 * A site as people mean it: the part of a host's name that its owner registered, such as
 * "example.co.uk" for "www.shop.example.co.uk". The public suffix list says where that part begins.
 * An address in numbers, a host of one label and a public suffix itself stand for themselves.
 */
class BROWSERSWEEP_EXPORT Site {
public:
    /**
     * The site of a host. Case, a leading dot (as cookies have it), a trailing one and the brackets
     * of an address in numbers count for nothing. Absent where the text is no host's name.
     */
    static std::optional<Site> ofHost(std::string_view host);

    /** The site of a web address (http, https, ws, wss, ftp); absent for any other text. */
    static std::optional<Site> ofAddress(std::string_view address);

    /**
     * What people type: a host, perhaps with a port, or a web address. Letters beyond ASCII are
     * written as browsers do ("xn--..."). Absent where it is neither.
     */
    static std::optional<Site> ofText(std::string_view text);

    /** The site's name in small letters, such as "example.co.uk". Never empty. */
    const std::string& name() const noexcept { return name_; }

    /** Whether a host belongs to the site: compared by whole labels. */
    bool hasHost(std::string_view host) const;

    /** In the order of the names. */
    friend auto operator<=>(const Site&, const Site&) = default;  // NOLINT(modernize-use-nullptr)

private:
    explicit Site(std::string name) : name_(std::move(name)) {}

    std::string name_;
};

}  // namespace browsersweep

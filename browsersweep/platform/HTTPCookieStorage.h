#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"

namespace browsersweep {

/** What identifies one cookie of a storage. */
struct HTTPCookie {
    std::string domain;  ///< what patterns are compared with
    std::string name;    ///< what the site finds it by
    std::string path;    ///< the part of the site that gets it

    /** Whether all fields are equal. */
    friend bool operator==(const HTTPCookie&, const HTTPCookie&) = default;
};

/** A store of HTTP cookies that programs of one user share. */
class BROWSERSWEEP_EXPORT HTTPCookieStorage {
public:
    HTTPCookieStorage() = default;
    HTTPCookieStorage(const HTTPCookieStorage&) = delete;
    HTTPCookieStorage& operator=(const HTTPCookieStorage&) = delete;
    virtual ~HTTPCookieStorage();

    /**
     * The storage shared by a group container: on macOS the system's; with the portable backend one
     * per identifier and process, empty at first, so that a host can fill it. The same identifier
     * gives the same storage.
     */
    static std::shared_ptr<HTTPCookieStorage> shared(std::string_view groupContainerIdentifier);

    /** The cookies it holds now. */
    virtual std::vector<HTTPCookie> cookies() const = 0;

    /** Adds a cookie, in the place of one with the same domain, name and path. */
    virtual void setCookie(const HTTPCookie& cookie) = 0;

    /** Deletes a cookie; one that it does not hold is no error. */
    virtual void deleteCookie(const HTTPCookie& cookie) = 0;
};

}  // namespace browsersweep

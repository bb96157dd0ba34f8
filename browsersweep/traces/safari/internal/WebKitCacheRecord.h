#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace browsersweep {

/** What stands at the beginning of a record of WebKit's network cache. */
struct WebKitCacheRecord {
    std::string partition;   ///< the site in which it was loaded; empty of most
    std::string type;        ///< "Resource" of a cached file
    std::string identifier;  ///< its address
    std::string body;        ///< the name of the file with its contents, if they lie in one

    /** Whose it is: the address's host, and the site in which it was loaded. */
    std::vector<std::string> hosts() const;

    /** Whether all fields are equal. */
    friend bool operator==(const WebKitCacheRecord&, const WebKitCacheRecord&) = default;
};

/** Reads the beginning of a record; absent where it is damaged or cut off. */
std::optional<WebKitCacheRecord> webKitCacheRecord(std::string_view bytes);

}  // namespace browsersweep

#include "browsersweep/platform/HTTPCookieStorage.h"

#include <map>
#include <mutex>
#include <tuple>

#include "browsersweep/platform/internal/foundation/FoundationText.h"
#include "browsersweep/platform/internal/foundation/Ownership.h"

namespace browsersweep {
namespace {

HTTPCookie identityOf(NSHTTPCookie* cookie) {
    return {utf8([cookie domain]), utf8([cookie name]), utf8([cookie path])};
}

using Key = std::tuple<std::string, std::string, std::string>;

Key keyOf(const HTTPCookie& cookie) {
    return {cookie.domain, cookie.name, cookie.path};
}

/**
 * The system's storage of a group container. It deletes its own cookie objects, so those of the
 * last listing are kept: to list all of them for each one that is deleted takes seconds for a
 * thousand.
 */
class FoundationCookieStorage : public HTTPCookieStorage {
public:
    explicit FoundationCookieStorage(NSHTTPCookieStorage* storage) : storage_(storage) {}

    std::vector<HTTPCookie> cookies() const override {
        const std::lock_guard lock(mutex_);
        @autoreleasepool {
            return list();
        }
    }

    void setCookie(const HTTPCookie& cookie) override {
        @autoreleasepool {
            // Not every implementation takes an empty value, and ours stands for none.
            NSDictionary* properties = [NSDictionary
                dictionaryWithObjectsAndKeys:foundationString(cookie.domain), NSHTTPCookieDomain,
                                             foundationString(cookie.name), NSHTTPCookieName,
                                             foundationString(cookie.path), NSHTTPCookiePath, @"1",
                                             NSHTTPCookieValue, nil];
            [storage_.get() setCookie:[NSHTTPCookie cookieWithProperties:properties]];
        }
    }

    void deleteCookie(const HTTPCookie& cookie) override {
        const std::lock_guard lock(mutex_);
        @autoreleasepool {
            if (!deleteListed(keyOf(cookie))) {
                list();
                deleteListed(keyOf(cookie));
            }
        }
    }

private:
    std::vector<HTTPCookie> list() const {
        std::vector<HTTPCookie> result;
        listed_.clear();
        for (NSHTTPCookie* cookie in [storage_.get() cookies]) {
            result.push_back(identityOf(cookie));
            listed_.emplace(keyOf(result.back()), cookie);
        }
        return result;
    }

    /** Whether the last listing had such a cookie. */
    bool deleteListed(const Key& key) {
        const auto [first, last] = listed_.equal_range(key);
        const bool isListed = first != last;
        for (auto found = first; found != last; ++found) {
            [storage_.get() deleteCookie:found->second.get()];
        }
        listed_.erase(first, last);
        return isListed;
    }

    Retained<NSHTTPCookieStorage*> storage_;
    mutable std::mutex mutex_;
    mutable std::multimap<Key, Retained<NSHTTPCookie*>> listed_;  ///< and not yet deleted
};

}  // namespace

std::shared_ptr<HTTPCookieStorage> HTTPCookieStorage::shared(
    std::string_view groupContainerIdentifier) {
    @autoreleasepool {
        NSString* identifier = foundationString(groupContainerIdentifier);
        return std::make_shared<FoundationCookieStorage>(
            [NSHTTPCookieStorage sharedCookieStorageForGroupContainerIdentifier:identifier]);
    }
}

}  // namespace browsersweep

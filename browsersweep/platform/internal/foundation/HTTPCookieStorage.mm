#include "browsersweep/platform/HTTPCookieStorage.h"

#include "browsersweep/platform/internal/foundation/FoundationText.h"

namespace browsersweep {
namespace {

HTTPCookie identityOf(NSHTTPCookie* cookie) {
    return {utf8([cookie domain]), utf8([cookie name]), utf8([cookie path])};
}

/** The system's storage of a group container. */
class FoundationCookieStorage : public HTTPCookieStorage {
public:
    explicit FoundationCookieStorage(NSHTTPCookieStorage* storage) : storage_([storage retain]) {}
    FoundationCookieStorage(const FoundationCookieStorage&) = delete;
    FoundationCookieStorage& operator=(const FoundationCookieStorage&) = delete;
    ~FoundationCookieStorage() override { [storage_ release]; }

    std::vector<HTTPCookie> cookies() const override {
        @autoreleasepool {
            std::vector<HTTPCookie> result;
            for (NSHTTPCookie* cookie in [storage_ cookies]) {
                result.push_back(identityOf(cookie));
            }
            return result;
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
            [storage_ setCookie:[NSHTTPCookie cookieWithProperties:properties]];
        }
    }

    void deleteCookie(const HTTPCookie& cookie) override {
        @autoreleasepool {
            NSArray* present = [[[storage_ cookies] copy] autorelease];
            for (NSHTTPCookie* candidate in present) {
                if (identityOf(candidate) == cookie) {
                    [storage_ deleteCookie:candidate];
                }
            }
        }
    }

private:
    NSHTTPCookieStorage* storage_;
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

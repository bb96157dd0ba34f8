#include "browsersweep/platform/internal/InMemoryCookieStorage.h"

namespace browsersweep {

std::vector<HTTPCookie> InMemoryCookieStorage::cookies() const {
    const std::lock_guard lock(mutex_);
    return cookies_;
}

void InMemoryCookieStorage::setCookie(const HTTPCookie& cookie) {
    const std::lock_guard lock(mutex_);
    std::erase(cookies_, cookie);
    cookies_.push_back(cookie);
}

void InMemoryCookieStorage::deleteCookie(const HTTPCookie& cookie) {
    const std::lock_guard lock(mutex_);
    std::erase(cookies_, cookie);
}

}  // namespace browsersweep

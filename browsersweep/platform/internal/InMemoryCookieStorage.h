#pragma once

#include <mutex>
#include <vector>

#include "browsersweep/platform/HTTPCookieStorage.h"

namespace browsersweep {

/** Cookies of this process alone. Hosts may use it on several threads at once. */
class InMemoryCookieStorage final : public HTTPCookieStorage {
public:
    std::vector<HTTPCookie> cookies() const override;
    void setCookie(const HTTPCookie& cookie) override;
    void deleteCookie(const HTTPCookie& cookie) override;

private:
    mutable std::mutex mutex_;
    std::vector<HTTPCookie> cookies_;
};

}  // namespace browsersweep

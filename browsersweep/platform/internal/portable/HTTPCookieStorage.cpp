#include "browsersweep/platform/HTTPCookieStorage.h"

#include <functional>
#include <map>
#include <mutex>

namespace browsersweep {
namespace {

// Hosts may use items on several threads, and all of them share a storage.
class InProcessCookieStorage final : public HTTPCookieStorage {
public:
    std::vector<HTTPCookie> cookies() const override {
        const std::lock_guard lock(mutex_);
        return cookies_;
    }

    void setCookie(const HTTPCookie& cookie) override {
        const std::lock_guard lock(mutex_);
        std::erase(cookies_, cookie);
        cookies_.push_back(cookie);
    }

    void deleteCookie(const HTTPCookie& cookie) override {
        const std::lock_guard lock(mutex_);
        std::erase(cookies_, cookie);
    }

private:
    mutable std::mutex mutex_;
    std::vector<HTTPCookie> cookies_;
};

}  // namespace

std::shared_ptr<HTTPCookieStorage> HTTPCookieStorage::shared(
    std::string_view groupContainerIdentifier) {
    // This state is the point: it stands in for the system's storage, which outlives every caller.
    static std::mutex mutex;
    static std::map<std::string, std::shared_ptr<HTTPCookieStorage>, std::less<>> storages;
    const std::lock_guard lock(mutex);
    std::shared_ptr<HTTPCookieStorage>& storage = storages[std::string(groupContainerIdentifier)];
    if (!storage) {
        storage = std::make_shared<InProcessCookieStorage>();
    }
    return storage;
}

}  // namespace browsersweep

#include "browsersweep/platform/HTTPCookieStorage.h"

#include <functional>
#include <map>
#include <mutex>

#include "browsersweep/platform/internal/InMemoryCookieStorage.h"

namespace browsersweep {

std::shared_ptr<HTTPCookieStorage> HTTPCookieStorage::shared(
    std::string_view groupContainerIdentifier) {
    // This state is the point: it stands in for the system's storage, which outlives every caller.
    static std::mutex mutex;
    static std::map<std::string, std::shared_ptr<HTTPCookieStorage>, std::less<>> storages;
    const std::lock_guard lock(mutex);
    std::shared_ptr<HTTPCookieStorage>& storage = storages[std::string(groupContainerIdentifier)];
    if (!storage) {
        storage = std::make_shared<InMemoryCookieStorage>();
    }
    return storage;
}

}  // namespace browsersweep

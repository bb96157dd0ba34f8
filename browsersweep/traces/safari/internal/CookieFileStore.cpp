#include "browsersweep/traces/safari/internal/CookieFileStore.h"

#include <string>
#include <utility>
#include <vector>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/cookies/internal/CookieDaemons.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

/** Some domains are written as addresses. */
std::vector<std::string> hostsOf(const std::string& domain) {
    return hostsIn(SiteForm::hostOrAddress, domain);
}

}  // namespace

CookieFileStore::CookieFileStore(std::filesystem::path file, Owner owner, Home home)
    : file_(std::move(file)), owner_(owner), home_(std::move(home)) {}

std::optional<BinaryCookies> CookieFileStore::cookies() const {
    const auto contents = contentsIfThere(*home_.fileManager(), file_);
    if (!contents) {
        return std::nullopt;
    }
    return BinaryDataDecoder().decode<BinaryCookies>(*contents);
}

TraceListing CookieFileStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    const auto found = cookies();
    for (const auto& page : found ? found->pages : std::vector<BinaryCookies::Page>()) {
        for (const BinaryCookies::Cookie& cookie : page.cookies) {
            collector.add(TraceKind::cookies, hostsOf(cookie.urlString), {1, cookie.size},
                          cookie.creationDate);
        }
    }
    return {collector.takeTraces(), {}};
}

void CookieFileStore::removeFromStorage(const SiteSelection& selection) const {
    const auto storage = home_.services().sharedCookieStorage("Cookies");
    SiteMatcher matcher(selection);
    for (const HTTPCookie& cookie : storage->cookies()) {
        if (matcher.selectsHosts(hostsOf(cookie.domain))) {
            storage->deleteCookie(cookie);
        }
    }
}

ForgetOutcome CookieFileStore::forget(const ForgetRequest& request) const {
    if (!request.takes(TraceKind::cookies)) {
        return {};
    }
    const FileManager& fileManager = *home_.fileManager();
    continueOrThrow(fileManager.control().get());
    removeLeftBeside(fileManager, file_);
    auto left = cookies();
    if (!left) {
        return {};
    }
    const std::size_t before = left->cookieCount();
    SiteMatcher matcher(request.sites);
    left->remove([&matcher](const BinaryCookies::Cookie& cookie) {
        return matcher.selectsHosts(hostsOf(cookie.urlString));
    });
    if (left->cookieCount() == before && !request.sites.isEverything()) {
        return {};
    }
    if (owner_ == Owner::system) {
        stopCookieDaemons(*home_.services().processLauncher);
        removeFromStorage(request.sites);
    }
    if (request.sites.isEverything()) {
        fileManager.removeFile(file_);
    } else {
        fileManager.replace(file_, BinaryDataEncoder().encode(*left));
    }
    return {};
}

}  // namespace browsersweep

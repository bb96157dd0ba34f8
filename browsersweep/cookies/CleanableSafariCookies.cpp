#include "browsersweep/cookies/CleanableSafariCookies.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/cookies/BinaryCookies.h"
#include "browsersweep/cookies/internal/CookieDaemons.h"
#include "browsersweep/platform/internal/Text.h"

namespace browsersweep {
namespace {

using Measurement = CleanableDataSize::Measurement;

constexpr std::string_view cookieFile = "Cookies/Cookies.binarycookies";
constexpr std::string_view couldNotRead = "Could not read cookies at ";
constexpr std::string_view couldNotClean = "Could not clean cookies at ";

struct DecodedFile {
    BinaryCookies cookies;
    std::size_t length = 0;
};

// The bytes are gone when it returns, so that they do not take memory while the model is encoded.
DecodedFile decodedFile(const FileManager& fileManager, const std::filesystem::path& file) {
    const Bytes contents = fileManager.contents(file);
    return {BinaryDataDecoder().decode<BinaryCookies>(contents), contents.size()};
}

bool selects(const CleanableDataFilter& filter, Date creationDate) {
    const bool passesDate = !filter.datesData || filter.datesData->matches(creationDate);
    const bool excludes = filter.patternsData &&
                          filter.patternsData->rule == CleanableDataFilter::Patterns::Rule::exclude;
    return passesDate && !excludes;
}

bool selectsFileCookie(CleanableDataFilters filters, const BinaryCookies::Cookie& cookie) {
    return std::any_of(filters.begin(), filters.end(), [&](const CleanableDataFilter& filter) {
        return selects(filter, cookie.creationDate);
    });
}

void removeSelected(BinaryCookies& cookies, CleanableDataFilters filters) {
    cookies.remove([filters](const BinaryCookies::Cookie& cookie) {
        return selectsFileCookie(filters, cookie);
    });
}

bool hitsDomain(const CleanableDataFilter::Patterns& patterns, const std::string& domain) {
    return std::any_of(patterns.patterns.begin(), patterns.patterns.end(),
                       [&](const std::string& pattern) {
                           return localizedCaseInsensitiveContains(domain, pattern);
                       });
}

// The last filter whose patterns hit decides; a cookie that none hits is selected.
bool selectsStorageCookie(CleanableDataFilters filters, const HTTPCookie& cookie) {
    bool isSelected = true;
    for (const CleanableDataFilter& filter : filters) {
        if (filter.patternsData && hitsDomain(*filter.patternsData, cookie.domain)) {
            isSelected = filter.patternsData->rule == CleanableDataFilter::Patterns::Rule::include;
        }
    }
    return isSelected;
}

CleanableDataSize filteredSize(DecodedFile file, CleanableDataFilters filters) {
    const std::size_t before = file.cookies.cookieCount();
    removeSelected(file.cookies, filters);
    const std::size_t removed = before - file.cookies.cookieCount();
    try {
        const std::size_t rest = BinaryDataEncoder().encode(file.cookies).size();
        return {removed, static_cast<std::int64_t>(file.length) - static_cast<std::int64_t>(rest)};
    } catch (...) {  // the number of cookies is known all the same
        return {removed, {0, true}};
    }
}

// The path as a file URL, with all but the characters that a path may hold as percent escapes.
std::string fileURLText(const std::filesystem::path& path) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,=:@/";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "file://";
    for (const char character : path.native()) {
        if (plain.find(character) != std::string_view::npos) {
            text.push_back(character);
        } else {
            const auto byte = static_cast<unsigned char>(character);
            text.push_back('%');
            text.push_back(digits[byte >> 4U]);
            text.push_back(digits[byte & 0x0FU]);
        }
    }
    return text;
}

}  // namespace

CleanableSafariCookies::CleanableSafariCookies(Home home)
    : home_(std::move(home)), cookieStorage_(home_.services().sharedCookieStorage("Cookies")) {}

CleanableDataSize CleanableSafariCookies::size(CleanableDataFilters filters) const {
    CleanableDataSize total;
    for (const auto& each : sizesOfFiles(filters)) {
        total = total + each.second;
    }
    return total;
}

std::vector<std::pair<std::filesystem::path, CleanableDataSize>>
CleanableSafariCookies::sizesOfFiles(CleanableDataFilters filters) const {
    std::vector<std::pair<std::filesystem::path, CleanableDataSize>> sizes;
    for (const std::filesystem::path& file : cookieFiles()) {
        logFailure(couldNotRead, file, [&] {
            const CleanableDataSize found = sizeOf(file, filters);
            sizes.emplace_back(file, found);
            count({0, 0, static_cast<std::uint64_t>(found.itemCount.value)});
        });
    }
    return sizes;
}

std::vector<CleanableDataPart> CleanableSafariCookies::parts() const {
    return {{{}, {false, true, false}, std::make_shared<CleanableSafariCookies>(*this)}};
}

void CleanableSafariCookies::clean(CleanableDataFilters filters) const {
    // The daemons are left running where nothing is to be cleaned any more.
    continueOrThrow(fileManager()->control().get());
    stopCookieDaemons(*home_.services().processLauncher);
    for (const std::filesystem::path& file : cookieFiles()) {
        logFailure(couldNotClean, file, [&] { count(cleanFile(file, filters)); });
    }
    cleanStorage(filters);
}

std::vector<CleanableDataLocation> CleanableSafariCookies::locations() const {
    const std::filesystem::path library = directoryProvider()->libraryDirectory();
    const std::filesystem::path container = library / "Containers/com.apple.Safari/Data/Library";
    return {{CleanableDataLocation::Kind::file, library / cookieFile},
            {CleanableDataLocation::Kind::file, container / cookieFile}};
}

std::vector<std::filesystem::path> CleanableSafariCookies::cookieFiles() const {
    std::vector<std::filesystem::path> files;
    for (CleanableDataLocation& place : locations()) {
        if (fileManager()->fileExists(place.path).isFile()) {
            files.push_back(std::move(place.path));
        }
    }
    return files;
}

CleanableDataSize CleanableSafariCookies::sizeOf(const std::filesystem::path& file,
                                                 CleanableDataFilters filters) const {
    DecodedFile decoded = decodedFile(*fileManager(), file);
    if (filters.empty()) {
        return {decoded.cookies.cookieCount(), fileSize(file)};
    }
    return filteredSize(std::move(decoded), filters);
}

Measurement CleanableSafariCookies::fileSize(const std::filesystem::path& file) const {
    try {
        const std::optional<std::uint64_t> size = fileManager()->attributes(file).size;
        if (size && std::in_range<std::int64_t>(*size)) {
            return static_cast<std::int64_t>(*size);
        }
        return {0, true};
    } catch (const OperationCancelled&) {
        throw;
    } catch (...) {
        return {0, true};
    }
}

OperationProgress CleanableSafariCookies::cleanFile(const std::filesystem::path& file,
                                                    CleanableDataFilters filters) const {
    if (filters.empty()) {
        fileManager()->removeFile(file);
        return {1, 0, 0};
    }
    Bytes contents;
    std::size_t removed = 0;
    {
        BinaryCookies cookies = decodedFile(*fileManager(), file).cookies;
        removed = cookies.cookieCount();
        removeSelected(cookies, filters);
        removed -= cookies.cookieCount();
        contents = BinaryDataEncoder().encode(cookies);
    }
    fileManager()->replace(file, contents);
    return {0, 0, removed};
}

void CleanableSafariCookies::cleanStorage(CleanableDataFilters filters) const {
    const auto control = fileManager()->control();
    for (const HTTPCookie& cookie : cookieStorage_->cookies()) {
        continueOrThrow(control.get());
        if (selectsStorageCookie(filters, cookie)) {
            cookieStorage_->deleteCookie(cookie);
        }
    }
}

/**
 * One file's failure must not keep the next file from being handled, whatever was thrown: a file
 * manager may be a host's own. A host that wants to stop is no failure.
 */
template <typename Operation>
void CleanableSafariCookies::logFailure(std::string_view message, const std::filesystem::path& file,
                                        Operation operation) const {
    try {
        continueOrThrow(fileManager()->control().get());
        operation();
    } catch (const OperationCancelled&) {
        throw;
    } catch (const std::exception& error) {
        log(message, file, error.what());
    } catch (...) {
        log(message, file, "unknown error");
    }
}

void CleanableSafariCookies::count(const OperationProgress& done) const noexcept {
    if (const auto control = fileManager()->control()) {
        control->count(done);
    }
}

void CleanableSafariCookies::log(std::string_view message, const std::filesystem::path& file,
                                 std::string_view error) const {
    std::string text(message);
    text.append(fileURLText(file)).append(": ").append(error);
    home_.services().systemLog->debug(text);
}

}  // namespace browsersweep

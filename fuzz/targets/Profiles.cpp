#include <algorithm>
#include <string>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"
#include "browsersweep/profiles/chromium/ChromiumPreferences.h"
#include "browsersweep/profiles/chromium/LocalState.h"
#include "browsersweep/profiles/firefox/IniFile.h"
#include "browsersweep/profiles/safari/SafariBookmarks.h"

#include "fuzz/targets/Input.h"
#include "fuzz/targets/Rule.h"
#include "fuzz/targets/Targets.h"

namespace browsersweep::fuzz {
namespace {

template <typename Bookmarks>
void requireAddresses(const Bookmarks& bookmarks) {
    for (const auto& bookmark : bookmarks) {
        require(URL::parse(bookmark.url.absoluteString()) == bookmark.url,
                "a bookmark's address parses");
    }
}

bool isWord(const std::string& text) {
    return !text.empty() && text.find_first_of(" \t\n\v\f\r;") == std::string::npos;
}

}  // namespace

void iniFile(BytesView input) {
    const IniFile file(textOf(input));
    for (const auto& [section, properties] : file.sections()) {
        for (const auto& [key, value] : properties) {
            require(isWord(key) && isWord(value), "keys and values are words without comments");
        }
    }
}

void localState(BytesView input) {
    try {
        const LocalState::Profile profile = LocalState::decode(input).profile;
        const auto& entries = profile.infoCache;
        const auto isConsented = [](const LocalState::Profile::Entry& entry) {
            return entry.second.isConsentedPrimaryAccount;
        };
        const bool any = std::any_of(entries.begin(), entries.end(), isConsented);
        for (const LocalState::Profile::Entry& entry : entries) {
            require(!any || profile.isPrimary(entry) == isConsented(entry),
                    "consent alone decides where there is any");
        }
    } catch (const DecodingError&) {
        return;
    }
}

void chromiumBookmarks(BytesView input) {
    try {
        requireAddresses(ChromiumBookmarks::decode(input).bookmarks());
    } catch (const DecodingError&) {
        return;
    }
}

void preferences(BytesView input) {
    try {
        for (const URL& site : ChromiumPreferences::decode(input).allowedSites()) {
            const std::string& text = site.absoluteString();
            require(text != "*" && text.find(',') == std::string::npos,
                    "a site is one piece that is no wildcard");
        }
    } catch (const DecodingError&) {
        return;
    }
}

void safariBookmarks(BytesView input) {
    try {
        requireAddresses(SafariBookmarks::decode(input).bookmarks());
    } catch (const DecodingError&) {
        return;
    }
}

}  // namespace browsersweep::fuzz

#include "browsersweep/traces/firefox/internal/SessionDocument.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/Base64.h"
#include "browsersweep/sites/internal/ByteHosts.h"
#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;
using Members = std::vector<JsonEditor::Member>;

// What stands instead of the last open tab of a window that still has closed ones of others.
constexpr std::string_view blankTab = R"({"entries":[]})";

// Shorter ones hold no address.
constexpr std::size_t shortestInBase64 = 24;

// What a text says behind so many bytes is what somebody wrote there, not where it is from.
constexpr std::size_t longestText = 65536;

/** A list of pages or tabs, and what goes with it. */
struct ListRow {
    std::string_view key;
    std::string_view shown;  ///< the key of the number of the one that is shown
    bool isVital = true;     ///< its holder is nothing without one
};
// Whether a window has closed tabs left is known before its open ones are looked at.
constexpr std::array listRows{
    ListRow{"entries", "index"},
    ListRow{"_closedTabs", {}, false},
    ListRow{"tabs", "selected"},
};

/** What a tab shows of its page. */
constexpr std::array<std::string_view, 2> faceKeys{"title", "image"};

/** What a closed tab or window of today has its tab in. */
constexpr std::string_view stateKey = "state";

bool isFaceKey(std::string_view key) {
    return std::find(faceKeys.begin(), faceKeys.end(), key) != faceKeys.end();
}

bool isListKey(std::string_view key) {
    return std::any_of(listRows.begin(), listRows.end(),
                       [&](const ListRow& row) { return row.key == key; });
}

void addHosts(const Hosts& more, Hosts& hosts) {
    for (const std::string& host : more) {
        if (std::find(hosts.begin(), hosts.end(), host) == hosts.end()) {
            hosts.push_back(host);
        }
    }
}

bool isInBase64(std::string_view text) {
    return text.size() >= shortestInBase64 &&
           std::all_of(text.begin(), text.end(),
                       [](char letter) { return letter == '=' || base64Digit(letter); });
}

/** "%3A%2F%2F" as it stands in an address that is a part of another: the marks of an address alone.
 */
std::string unescaped(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, char>, 6> escapes{
        {{"%3A", ':'}, {"%3a", ':'}, {"%2F", '/'}, {"%2f", '/'}, {"%3F", '?'}, {"%26", ' '}}};
    std::string result;
    while (!text.empty()) {
        const auto* const found =
            std::find_if(escapes.begin(), escapes.end(),
                         [text](const auto& each) { return text.starts_with(each.first); });
        result += found == escapes.end() ? text.front() : found->second;
        text.remove_prefix(found == escapes.end() ? 1 : found->first.size());
    }
    return result;
}

/** Pages of the browser itself and of extensions belong to no site, and tell of none. */
bool isBrowsersPage(std::string_view address) {
    constexpr std::array<std::string_view, 4> schemes{
        "about:", "chrome:", "moz-extension:", "resource:"};
    return std::any_of(schemes.begin(), schemes.end(),
                       [&](std::string_view scheme) { return address.starts_with(scheme); });
}

const JsonEditor::Member* find(const Members& members, std::string_view key) {
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&](const auto& member) { return member.key == key; });
    return found == members.end() ? nullptr : &*found;
}

Members membersOf(const Members& members, std::string_view key) {
    Members found;
    std::copy_if(members.begin(), members.end(), std::back_inserter(found),
                 [&](const auto& member) { return member.key == key; });
    return found;
}

std::size_t numberIn(std::string_view text) {
    std::size_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string textAt(const JsonEditor& document, const Members& members, std::string_view key) {
    const auto* member = find(members, key);
    return member == nullptr ? std::string() : document.string(member->value);
}

/** "(https,example.com)" or "(https,example.com,8443)" */
std::string hostOfPartition(std::string_view key) {
    key.remove_prefix(std::min(key.find(','), key.size()));
    key.remove_prefix(std::min<std::size_t>(1, key.size()));
    return plainHost(key.substr(0, std::min(key.find_first_of(",)"), key.size())));
}

Hosts hostsOfCookie(const JsonEditor& document, const Members& cookie) {
    Hosts hosts = hostsIn(SiteForm::host, textAt(document, cookie, "host"));
    if (const auto* attributes = find(cookie, "originAttributes")) {
        const Members members = document.members(attributes->value);
        const std::string top = hostOfPartition(textAt(document, members, "partitionKey"));
        addHosts(top.empty() ? Hosts() : Hosts{top}, hosts);
    }
    return hosts;
}

/** Nothing where it is no page, or one of the browser that shows no site's. */
std::optional<Hosts> hostsOfPage(const JsonEditor& document, const Members& page) {
    const std::string address = textAt(document, page, "url");
    Hosts hosts = hostsIn(SiteForm::address, address);
    if (hosts.empty()) {
        hosts = hostsInSessionText(address);
    }
    const bool isOfNobody = hosts.empty() && (address.empty() || isBrowsersPage(address));
    return isOfNobody ? std::nullopt : std::optional(std::move(hosts));
}

TraceKind kindBelow(std::string_view key, TraceKind kind) {
    return key == "cookies" ? TraceKind::cookies : key == "storage" ? TraceKind::siteStorage : kind;
}

// Each value is read once for each that it stands in, and no state of Firefox's is half as deep.
constexpr int deepest = 64;

BytesView notTooDeep(BytesView json) {
    int depth = 0;
    bool isString = false;
    for (std::size_t place = 0; place < json.size(); ++place) {
        const std::uint8_t letter = json[place];
        place += isString && letter == '\\' ? 1 : 0;
        isString = isString != (letter == '"');
        if (!isString && (letter == '{' || letter == '[') && ++depth > deepest) {
            throw DecodingError::dataCorrupted("a session that is too deep");
        }
        depth -= !isString && (letter == '}' || letter == ']') ? 1 : 0;
    }
    return json;
}

}  // namespace

SessionDocument::SessionDocument(BytesView json) : document_(notTooDeep(json)) {}

Hosts hostsInSessionText(std::string_view text) {
    if (text.starts_with("data:")) {
        return {};
    }
    if (text.size() > longestText) {
        text = text.substr(0, longestText);
    }
    Hosts hosts = hostsInBytes(unescaped(text));
    addHosts(hostsIn(SiteForm::originAttributes, text), hosts);
    if (isInBase64(text)) {
        const std::string bytes = fromBase64(text);
        addHosts(hostsInBytes(bytes), hosts);
        addHosts(hostsIn(SiteForm::originAttributes, bytes), hosts);
    }
    return hosts;
}

bool SessionDocument::List::isEmptied() const noexcept {
    return !fates.empty() && !hasAnyLeft();
}

bool SessionDocument::List::hasAnyLeft() const noexcept {
    return std::any_of(fates.begin(), fates.end(), [](Fate fate) { return fate != Fate::goes; });
}

void SessionDocument::prune(const Question& question) {
    question_ = &question;
    fateOf({{}, document_.root(), 0, 0}, {});
    question_ = nullptr;
}

bool SessionDocument::goes(TraceKind kind, std::span<const std::string> hosts,
                           const Member& about) const {
    return (*question_)(kind, hosts, about.end - about.begin);
}

SessionDocument::Fate SessionDocument::fateOf(const Member& member, const Place& place) {
    const std::string_view text = document_.text(member.value);
    if (place.holder == "storage") {
        const Hosts hosts = hostsIn(SiteForm::firefoxOrigin, member.key);
        const bool isGone = !hosts.empty() && goes(TraceKind::siteStorage, hosts, member);
        return isGone ? Fate::goes : Fate::stays;
    }
    if (text.starts_with('{')) {
        return fateOfObject(member, place);
    }
    if (text.starts_with('[')) {
        const List list = pruned(member, place);
        remove(list.elements, list.fates);
        return Fate::stays;
    }
    return text.starts_with('"') ? fateOfText(member, place) : Fate::stays;
}

SessionDocument::List SessionDocument::pruned(const Member& array, const Place& place) {
    List list{document_.members(array.value), {}};
    list.fates.reserve(list.elements.size());
    for (const Member& element : list.elements) {
        list.fates.push_back(fateOf(element, {place.kind, place.hosts, array.key}));
    }
    return list;
}

void SessionDocument::remove(const Members& members, const std::vector<Fate>& fates) {
    std::vector<bool> isRemoved;
    isRemoved.reserve(fates.size());
    for (const Fate fate : fates) {
        isRemoved.push_back(fate == Fate::goes);
    }
    document_.remove(members, isRemoved);
}

// A value that names a host beside that of its page, such as where the page was reached from. It is
// somebody else's trace there, and the page does without.
SessionDocument::Fate SessionDocument::fateOfText(const Member& text, const Place& place) const {
    if (text.key == "url" && !place.hosts.empty()) {
        return Fate::stays;
    }
    bool isGone = false;
    for (const std::string& host : hostsInSessionText(document_.string(text.value))) {
        const bool isOfPage =
            std::find(place.hosts.begin(), place.hosts.end(), host) != place.hosts.end();
        isGone = (!isOfPage && goes(place.kind, std::span(&host, 1), text)) || isGone;
    }
    return isGone ? Fate::goes : Fate::stays;
}

SessionDocument::Fate SessionDocument::fateOfObject(const Member& object, const Place& place) {
    const Members members = document_.members(object.value);
    if (place.holder == "cookies") {
        const bool isGone = goes(TraceKind::cookies, hostsOfCookie(document_, members), object);
        return isGone ? Fate::goes : Fate::stays;
    }
    const std::optional<Hosts> own = hostsOfPage(document_, members);
    if (own && goes(place.kind, *own, object)) {
        return Fate::goes;
    }
    const Place within{place.kind, own ? std::span(*own) : place.hosts, object.key};
    const Fate fate = fateByContents(members, within);
    if (fate != Fate::goes) {
        removeOthers(members, within, fate == Fate::losesFace);
    }
    return fate;
}

// A closed tab is nothing without its state, a tab without pages, a window without tabs.
SessionDocument::Fate SessionDocument::fateByContents(const Members& members, const Place& within) {
    Fate fate = Fate::stays;
    for (const Member& member : members) {
        if (member.key == stateKey) {
            fate = std::max(fate, fateOf(member, within));
        }
    }
    bool hasClosedTabs = false;
    for (const ListRow& row : listRows) {
        for (const Member& member : membersOf(members, row.key)) {
            List list = pruned(member, within);
            if (row.isVital && list.isEmptied() && !hasClosedTabs) {
                return Fate::goes;
            }
            if (row.isVital && list.isEmptied()) {
                document_.replace(list.elements.front().value, std::string(blankTab));
                list.fates.front() = Fate::losesFace;
            }
            hasClosedTabs = hasClosedTabs || (!row.isVital && list.hasAnyLeft());
            remove(list.elements, list.fates);
            fate = std::max(fate, afterMoving(members, row.shown, list));
        }
    }
    return fate;
}

// The number of the page or tab that is shown counts from one. Where that one has gone, the one
// before it is shown; where the number is missing, the last.
SessionDocument::Fate SessionDocument::afterMoving(const Members& members, std::string_view key,
                                                   const List& list) {
    const auto* place = find(members, key);
    const std::size_t count = list.fates.size();
    std::size_t shown = place == nullptr ? 0 : numberIn(document_.text(place->value));
    if (shown == 0 || shown > count) {
        shown = count;
    }
    if (key.empty() || shown == 0) {
        return Fate::stays;
    }
    const auto end = list.fates.begin() + static_cast<std::ptrdiff_t>(shown);
    const auto gone = static_cast<std::size_t>(std::count(list.fates.begin(), end, Fate::goes));
    if (place != nullptr && gone > 0) {
        document_.replace(place->value, std::to_string(std::max<std::size_t>(1, shown - gone)));
    }
    return list.fates[shown - 1] == Fate::stays ? Fate::stays : Fate::losesFace;
}

void SessionDocument::removeOthers(const Members& members, const Place& within, bool isFaceLost) {
    std::vector<Fate> fates;
    fates.reserve(members.size());
    for (const Member& member : members) {
        if (member.key == stateKey || isListKey(member.key)) {
            fates.push_back(Fate::stays);
        } else if (isFaceLost && isFaceKey(member.key)) {
            fates.push_back(Fate::goes);
        } else {
            fates.push_back(
                fateOf(member, {kindBelow(member.key, within.kind), within.hosts, within.holder}));
        }
    }
    remove(members, fates);
}

}  // namespace browsersweep

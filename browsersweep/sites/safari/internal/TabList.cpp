#include "browsersweep/sites/safari/internal/TabList.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/internal/ByteHosts.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

constexpr std::string_view addressKey = "TabURL";
constexpr std::string_view tabsKey = "TabStates";
constexpr std::string_view selectedKey = "SelectedTabIndex";
constexpr std::array<std::string_view, 2> dateKeys{"LastVisitTime", "DateClosed"};

/** Property lists within property lists: real ones have one or two. */
constexpr int maximumDepth = 8;

bool isTab(const PropertyList& value) noexcept {
    const PropertyList* const address = value.find(addressKey);
    return address != nullptr && address->asString() != nullptr;
}

Hosts ownHosts(const PropertyList& tab) {
    return hostsIn(SiteForm::address, *tab.find(addressKey)->asString());
}

std::optional<Date> lastUse(const PropertyList& tab) {
    std::optional<Date> latest;
    for (const std::string_view key : dateKeys) {
        const PropertyList* const found = tab.find(key);
        const auto date = found == nullptr ? std::nullopt : found->asDate();
        const auto seconds = found == nullptr ? std::nullopt : found->asReal();
        latest = std::max(
            latest,
            date ? date
                 : (seconds ? std::optional(dateFromReferenceSeconds(*seconds)) : std::nullopt));
    }
    // What was never used has a date before everything.
    return latest && referenceSeconds(*latest) > 0 ? latest : std::nullopt;
}

std::optional<PropertyList> propertyListIn(const Bytes& data) {
    if (placeOfPropertyList(textOf(data)) != 0) {
        return std::nullopt;
    }
    try {
        return PropertyList::parse(data);
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

ListedTab listed(const PropertyList& tab) {
    ListedTab result{ownHosts(tab), {}, lastUse(tab), tab.binaryData().size()};
    for (std::string& host : hostsInValue(tab)) {
        if (std::find(result.hosts.begin(), result.hosts.end(), host) == result.hosts.end()) {
            result.earlier.push_back(std::move(host));
        }
    }
    return result;
}

void addTabs(const PropertyList& value, int depth, std::vector<ListedTab>& tabs) {
    if (isTab(value)) {
        tabs.push_back(listed(value));
    } else if (const auto* const values = value.asArray()) {
        for (const PropertyList& each : *values) {
            addTabs(each, depth, tabs);
        }
    } else if (const auto* const members = value.asDictionary()) {
        for (const PropertyList::Entry& member : *members) {
            addTabs(member.value, depth, tabs);
        }
    } else if (const auto* const data = value.asData(); data != nullptr && depth < maximumDepth) {
        if (const auto inner = propertyListIn(*data)) {
            addTabs(*inner, depth + 1, tabs);
        }
    }
}

/** Takes tabs out of values. What it gives for a value that stays as it is, is that very value. */
class Editor {
public:
    explicit Editor(SiteMatcher& matcher) : matcher_(matcher) {}

    /** Nothing where the value goes with the tabs in it. */
    std::optional<PropertyList> edited(const PropertyList& value, int depth) {
        if (isTab(value)) {
            return editedTab(value);
        }
        if (value.asArray() != nullptr) {
            return editedArray(value, depth);
        }
        if (value.asDictionary() != nullptr) {
            return editedDictionary(value, depth, false);
        }
        return value.asData() != nullptr && depth < maximumDepth ? editedData(value, depth) : value;
    }

    PropertyList editedRoot(const PropertyList& root) {
        if (root.asDictionary() != nullptr) {
            return editedDictionary(root, 0, true).value_or(root);
        }
        return edited(root, 0).value_or(PropertyList::array({}));
    }

private:
    std::optional<PropertyList> editedTab(const PropertyList& tab) {
        if (matcher_.selectsHosts(ownHosts(tab))) {
            return std::nullopt;
        }
        if (!matcher_.selection().isOnly()) {
            return tab;
        }
        PropertyList::Dictionary left = *tab.asDictionary();
        const auto count = left.size();
        std::erase_if(left, [this](const PropertyList::Entry& member) {
            return member.key != addressKey && matcher_.selectsHosts(hostsInValue(member.value));
        });
        return left.size() == count ? tab : PropertyList::dictionary(std::move(left));
    }

    /** With the last of its tabs it goes itself. */
    std::optional<PropertyList> editedArray(const PropertyList& value, int depth) {
        PropertyList::Array left;
        bool isChanged = false;
        for (const PropertyList& each : *value.asArray()) {
            auto element = edited(each, depth);
            isChanged = isChanged || !element || !(*element == each);
            if (element) {
                left.push_back(std::move(*element));
            }
        }
        if (!isChanged) {
            return value;
        }
        return left.empty() ? std::nullopt : std::optional(PropertyList::array(std::move(left)));
    }

    std::optional<PropertyList> editedDictionary(const PropertyList& value, int depth,
                                                 bool isRoot) {
        PropertyList::Dictionary left = *value.asDictionary();
        bool isChanged = false;
        for (PropertyList::Entry& member : left) {
            auto element = edited(member.value, depth);
            if (!element && !isRoot) {
                return std::nullopt;
            }
            if (!element || !(*element == member.value)) {
                isChanged = true;
                member.value = element.value_or(PropertyList::array({}));
            }
        }
        if (!isChanged) {
            return value;
        }
        correctSelection(value, left);
        return PropertyList::dictionary(std::move(left));
    }

    /** The number of the tab that a window shows counts those before it. */
    void correctSelection(const PropertyList& window, PropertyList::Dictionary& left) {
        const PropertyList* const tabs = window.find(tabsKey);
        const PropertyList* const selected = window.find(selectedKey);
        const auto index = selected == nullptr ? std::nullopt : selected->asInteger();
        if (tabs == nullptr || tabs->asArray() == nullptr || !index || *index < 0) {
            return;
        }
        std::int64_t place = 0;
        std::int64_t corrected = 0;
        std::int64_t count = 0;
        for (const PropertyList& tab : *tabs->asArray()) {
            const bool stays = edited(tab, 0).has_value();
            corrected += stays && place < *index ? 1 : 0;
            count += stays ? 1 : 0;
            ++place;
        }
        for (PropertyList::Entry& member : left) {
            if (member.key == selectedKey) {
                member.value = PropertyList::integer(
                    std::min(corrected, std::max<std::int64_t>(count - 1, 0)));
            }
        }
    }

    std::optional<PropertyList> editedData(const PropertyList& value, int depth) {
        const auto inner = propertyListIn(*value.asData());
        if (!inner) {
            return value;
        }
        auto left = edited(*inner, depth + 1);
        if (left && *left == *inner) {
            return value;
        }
        return left ? std::optional(PropertyList::data(left->binaryData())) : std::nullopt;
    }

    SiteMatcher& matcher_;
};

}  // namespace

std::vector<ListedTab> tabsIn(const PropertyList& root) {
    std::vector<ListedTab> tabs;
    addTabs(root, 0, tabs);
    return tabs;
}

PropertyList withoutTabs(const PropertyList& root, SiteMatcher& matcher) {
    return Editor(matcher).editedRoot(root);
}

}  // namespace browsersweep

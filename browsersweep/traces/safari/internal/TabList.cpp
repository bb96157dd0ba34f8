#include "browsersweep/traces/safari/internal/TabList.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/internal/ByteHosts.h"
#include "browsersweep/sites/internal/NestingBudget.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/traces/safari/internal/ValueSize.h"

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

ListedTab listed(const PropertyList& tab, NestingBudget& budget) {
    ListedTab result{ownHosts(tab), {}, lastUse(tab), roughSize(tab)};
    for (std::string& host : hostsInValue(tab, budget)) {
        if (std::find(result.hosts.begin(), result.hosts.end(), host) == result.hosts.end()) {
            result.earlier.push_back(std::move(host));
        }
    }
    return result;
}

void addTabs(const PropertyList& value, int depth, NestingBudget& budget,
             std::vector<ListedTab>& tabs) {
    budget.take(1);
    if (isTab(value)) {
        tabs.push_back(listed(value, budget));
    } else if (const auto* const values = value.asArray()) {
        for (const PropertyList& each : *values) {
            addTabs(each, depth, budget, tabs);
        }
    } else if (const auto* const members = value.asDictionary()) {
        for (const PropertyList::Entry& member : *members) {
            addTabs(member.value, depth, budget, tabs);
        }
    } else if (const auto* const data = value.asData(); data != nullptr && depth < maximumDepth) {
        budget.take(data->size());
        if (const auto inner = propertyListIn(*data)) {
            addTabs(*inner, depth + 1, budget, tabs);
        }
    }
}

/** Takes tabs out of values. What it gives for a value that stays as it is, is that very value. */
class Editor {
public:
    explicit Editor(SiteMatcher& matcher) : matcher_(matcher) {}

    /** Nothing where the value goes with the tabs in it. */
    std::optional<PropertyList> edited(const PropertyList& value, int depth) {
        budget_.take(1);
        if (isTab(value)) {
            return editedTab(value);
        }
        if (value.asArray() != nullptr) {
            return editedArray(value, depth).left;
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
    /** What is left of an array, and which of its elements stay in it. */
    struct EditedArray {
        std::optional<PropertyList> left;
        std::vector<bool> stay;
    };

    std::optional<PropertyList> editedTab(const PropertyList& tab) {
        if (matcher_.selectsHosts(ownHosts(tab))) {
            return std::nullopt;
        }
        ++tabsLeft_;
        if (!matcher_.selection().isOnly()) {
            return tab;
        }
        PropertyList::Dictionary left = *tab.asDictionary();
        const auto count = left.size();
        std::erase_if(left, [this](const PropertyList::Entry& member) {
            return member.key != addressKey &&
                   matcher_.selectsHosts(hostsInValue(member.value, budget_));
        });
        return left.size() == count ? tab : PropertyList::dictionary(std::move(left));
    }

    /** With the last of its tabs it goes itself. */
    EditedArray editedArray(const PropertyList& value, int depth) {
        const PropertyList::Array& values = *value.asArray();
        std::optional<PropertyList::Array> left;  // none as long as everything stays as it is
        std::vector<bool> stay;
        for (const PropertyList& each : values) {
            auto element = edited(each, depth);
            const bool isChanged = !element || !(*element == each);
            if (isChanged && !left) {
                left.emplace(values.begin(),
                             values.begin() + static_cast<std::ptrdiff_t>(stay.size()));
            }
            stay.push_back(element.has_value());
            if (left && element) {
                left->push_back(std::move(*element));
            }
        }
        if (!left) {
            return {value, std::move(stay)};
        }
        if (left->empty()) {
            return {std::nullopt, std::move(stay)};
        }
        return {PropertyList::array(std::move(*left)), std::move(stay)};
    }

    /** With the last of the tabs in it, it goes itself; the root stays. */
    std::optional<PropertyList> editedDictionary(const PropertyList& value, int depth,
                                                 bool isRoot) {
        PropertyList::Dictionary left;
        left.reserve(value.asDictionary()->size());
        std::vector<bool> tabsThatStay;
        const std::size_t tabsBefore = tabsLeft_;
        bool isAnyGone = false;
        for (const PropertyList::Entry& member : *value.asDictionary()) {
            auto element = editedMember(member, depth, tabsThatStay);
            isAnyGone = isAnyGone || !element;
            if (element) {
                left.push_back({member.key, std::move(*element)});
            } else if (member.value.asArray() != nullptr) {
                left.push_back({member.key, PropertyList::array({})});
            }
        }
        if (isAnyGone && !isRoot && tabsLeft_ == tabsBefore) {
            return std::nullopt;
        }
        if (left == *value.asDictionary()) {
            return value;
        }
        correctSelection(value, tabsThatStay, left);
        return PropertyList::dictionary(std::move(left));
    }

    /** Notes which tabs stay, where it is the tabs of a window. */
    std::optional<PropertyList> editedMember(const PropertyList::Entry& member, int depth,
                                             std::vector<bool>& tabsThatStay) {
        if (member.key != tabsKey || member.value.asArray() == nullptr) {
            return edited(member.value, depth);
        }
        EditedArray tabs = editedArray(member.value, depth);
        tabsThatStay = std::move(tabs.stay);
        return std::move(tabs.left);
    }

    /** The number of the tab that a window shows counts those before it. */
    static void correctSelection(const PropertyList& window, const std::vector<bool>& tabsThatStay,
                                 PropertyList::Dictionary& left) {
        const PropertyList* const selected = window.find(selectedKey);
        const auto index = selected == nullptr ? std::nullopt : selected->asInteger();
        if (tabsThatStay.empty() || !index || *index < 0) {
            return;
        }
        std::int64_t place = 0;
        std::int64_t corrected = 0;
        std::int64_t count = 0;
        for (const bool stays : tabsThatStay) {
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
        budget_.take(value.asData()->size());
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
    NestingBudget budget_{NestingBudget::ofFile};
    std::size_t tabsLeft_ = 0;
};

}  // namespace

std::vector<ListedTab> tabsIn(const PropertyList& root) {
    std::vector<ListedTab> tabs;
    NestingBudget budget(NestingBudget::ofFile);
    addTabs(root, 0, budget, tabs);
    return tabs;
}

PropertyList withoutTabs(const PropertyList& root, SiteMatcher& matcher) {
    return Editor(matcher).editedRoot(root);
}

}  // namespace browsersweep

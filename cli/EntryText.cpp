#include "cli/EntryText.h"

#include <cstddef>

#include <fmt/format.h>

#include "cli/Figures.h"
#include "cli/ProfileLabels.h"
#include "cli/Table.h"
#include "cli/Text.h"
#include "cli/Wrapping.h"

namespace browsersweep::cli {
namespace {

std::string headingOf(const BrowserSizes& row, const CategorySize& part, const ItemRow& item) {
    const std::string profile =
        item.profile ? ", " + labelOf(*item.profile, item.folder, item.isNameShared) : "";
    return printable(fmt::format("{}{}, {}: {}", displayName(row.browser), profile,
                                 displayName(part.category), item.what));
}

/** The file below the item's folder, or the table of its database. */
std::string nameOf(const ItemEntry& entry, const ItemRow& item) {
    if (!entry.table.empty()) {
        return "table " + printable(entry.table);
    }
    const auto below = entry.path.lexically_relative(item.what);
    const bool isBelow = !below.empty() && below != "." && *below.begin() != "..";
    return printable(isBelow ? below.string() : entry.path.string());
}

/** Rows and cookies are counted; a file is one, so that its size says all. */
std::string countOf(const ItemEntry& entry, bool isCookieFile) {
    if (!entry.table.empty()) {
        return countText(entry.items) + " rows";
    }
    return isCookieFile ? countText(entry.items) + " cookies" : "";
}

std::string tableOf(const ItemRow& item, bool areCookies, const Appearance& appearance) {
    constexpr std::size_t leastName = 12;
    Table table({{"  ", Alignment::left, leastName, 0, Cut::front},
                 {"", Alignment::right},
                 {"", Alignment::right}});
    for (const ItemEntry& entry : *item.entries) {
        table.addRow({"  " + nameOf(entry, item), countOf(entry, areCookies),
                      entry.bytes ? bytesText(*entry.bytes) : ""});
    }
    const std::string text = table.text(appearance);
    return text.substr(text.find('\n') + 1);  // the columns need no names
}

}  // namespace

std::string entriesText(const SizesReport& report, const Appearance& appearance) {
    std::string text;
    for (const BrowserSizes& row : report.browsers) {
        for (const CategorySize& part : row.categories) {
            const bool areCookies = part.category == CleanableDataCategory::httpCookies;
            for (const ItemRow& item : part.items) {
                if (item.entries && !item.entries->empty()) {
                    text += "\n" + wrapped(headingOf(row, part, item), appearance.columns) +
                            tableOf(item, areCookies, appearance);
                }
            }
        }
    }
    return text;
}

}  // namespace browsersweep::cli

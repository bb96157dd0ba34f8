// A small application: tells what each browser keeps, and cleans one category of one browser while
// it shows where it is. Its user presses Stop once, and then lets it go to its end.

#include <cstddef>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/hosting/ItemSweep.h"

namespace bs = browsersweep;

namespace {

/** The button that a window would have. Another thread or a signal may set such a flag as well. */
struct StopButton {
    bool isPressed = false;
};

bool everyProfile(const bs::BrowserProfile& /*profile*/) {
    return true;
}

bs::SweepOptions examining(const std::shared_ptr<bs::OperationControl>& control) {
    bs::SweepOptions options;
    options.keepsGoing = true;  // one item's failure hides no other
    options.examines = true;    // what cannot be seen is told, and never a plain zero
    options.control = control;
    return options;
}

void showSizes(const bs::Home& home, const std::shared_ptr<bs::OperationControl>& control) {
    for (const bs::Browser browser : bs::allBrowsers) {
        const auto items = bs::sweepItems(*bs::cleaner(browser, home), everyProfile);
        const auto sum = bs::ItemSweep(items, examining(control)).measure().sum();
        if (sum.itemCount.value > 0) {
            std::cout << bs::displayName(browser) << ": " << sum.itemCount.value << " items, "
                      << sum.byteCount.value << " bytes\n";
        }
    }
}

std::vector<bs::SweepItem> itemsOf(bs::CleanableDataCategory category,
                                   const bs::BrowserCleaner& cleaner) {
    auto items = bs::sweepItems(cleaner, everyProfile);
    std::erase_if(items,
                  [category](const bs::SweepItem& item) { return item.category != category; });
    return items;
}

void clean(const std::vector<bs::SweepItem>& items,
           const std::shared_ptr<bs::OperationControl>& control, const StopButton& button) {
    const auto show = [&button](const bs::SweepItem& /*next*/, std::size_t done, std::size_t all) {
        std::cerr << '\r' << done << " of " << all << std::flush;
        return !button.isPressed;  // false stops before the next item
    };
    const auto result = bs::ItemSweep(items, examining(control), show).cleanAndMeasure();
    std::cerr << '\n';
    for (const bs::ItemResult& item : result.items) {
        std::cout << "  " << item.what.filename().string() << ": " << bs::displayName(item.verdict)
                  << '\n';
    }
    std::cout << "  " << result.sum().itemCount.value << " items are gone\n";
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: clean_with_progress HOME\n";
        return 2;
    }
    StopButton button;
    // Asked between files, and while statements run: true stops the item that is under way.
    const auto control = std::make_shared<bs::OperationControl>(
        [&button](const bs::OperationProgress& /*done*/) { return button.isPressed; });
    const bs::Home home = bs::Home::at(arguments[1], control);
    showSizes(home, control);

    const auto chrome = bs::cleaner(bs::Browser::googleChrome, home);
    const auto cookies = itemsOf(bs::CleanableDataCategory::httpCookies, *chrome);
    std::cout << "Cleaning the cookies of " << chrome->name() << ", stopped at once:\n";
    button.isPressed = true;
    clean(cookies, control, button);
    std::cout << "And to the end:\n";
    button.isPressed = false;
    clean(cookies, control, button);
}

// Tells how much history Google Chrome keeps in the home folder that is named.

#include <iostream>

#include "browsersweep/catalogue/BrowserCleaners.h"

using namespace browsersweep;

int main(int, char** arguments) {
    const auto chrome = cleaner(Browser::googleChrome, Home::at(arguments[1]));
    const auto data = chrome->cleanableData([](const BrowserProfile&) { return true; });
    if (const auto* const history = data.find(CleanableDataCategory::history)) {
        const CleanableDataSize size = history->size();
        std::cout << chrome->name() << " keeps " << size.itemCount.value << " pieces of history, "
                  << size.byteCount.value << " bytes\n";
    }
}

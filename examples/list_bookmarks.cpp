// Lists the bookmarks of all browsers in a home folder.

#include <exception>
#include <iostream>

#include "browsersweep/catalogue/BrowserCleaners.h"

namespace bs = browsersweep;

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: list_bookmarks HOME\n";
        return 2;
    }
    int status = 0;
    const auto home = bs::Home::at(arguments[1]);
    for (const bs::Browser browser : bs::allBrowsers) {
        try {
            const auto primary = [](const bs::BrowserProfile& profile) {
                return profile.isPrimary();
            };
            for (const auto& bookmark : bs::cleaner(browser, home)->bookmarks(primary)) {
                std::cout << bs::displayName(browser) << ": "
                          << bookmark.name.value_or("(untitled)") << " <"
                          << bookmark.url.absoluteString() << ">\n";
            }
        } catch (const std::exception& error) {
            std::cerr << bs::displayName(browser) << ": " << error.what() << '\n';
            status = 1;
        }
    }
    return status;
}

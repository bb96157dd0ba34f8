// Lists the sites that may send push notifications, profile by profile.

#include <exception>
#include <iostream>

#include "browsersweep/catalogue/BrowserCleaners.h"

namespace bs = browsersweep;

namespace {

void list(const bs::BrowserCleaner& cleaner) {
    for (const auto& profile : cleaner.profileReader().profiles()) {
        for (const auto& subscription : profile->notificationSubscriptions()) {
            std::cout << cleaner.name() << ", " << profile->name().value_or("(no name)") << ": "
                      << subscription->sourceURL().absoluteString() << '\n';
        }
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: list_notifications HOME\n";
        return 2;
    }
    int status = 0;
    const auto home = bs::Home::at(arguments[1]);
    for (const bs::Browser browser :
         {bs::Browser::firefox, bs::Browser::googleChrome, bs::Browser::safari}) {
        try {
            list(*bs::cleaner(browser, home));
        } catch (const std::exception& error) {
            std::cerr << bs::displayName(browser) << ": " << error.what() << '\n';
            status = 1;
        }
    }
    return status;
}

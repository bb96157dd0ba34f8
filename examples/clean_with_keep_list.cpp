// Deletes the cookies of every browser but those of the sites to keep.
//
// A browser that fails is named, and the others are cleaned all the same.

#include <exception>
#include <iostream>
#include <vector>

#include "browsersweep/catalogue/BrowserCleaners.h"

namespace bs = browsersweep;

namespace {

using Rule = bs::CleanableDataFilter::Rule;

/** All patterns stand in one filter: a cookie is kept if any of them occurs in its host. */
const std::vector<bs::CleanableDataFilter> keepList{
    bs::CleanableDataFilter(Rule::exclude, {"example.com", "example.org"})};

void cleanCookies(const bs::BrowserCleaner& cleaner) {
    const auto data = cleaner.cleanableData([](const bs::BrowserProfile&) { return true; });
    const auto* const cookies = data.find(bs::CleanableDataCategory::httpCookies);
    if (cookies == nullptr) {
        return;
    }
    if (cookies->requiresClosedBrowserToClean()) {
        std::cout << cleaner.name() << " must be closed: ";
    }
    const auto removed = cookies->cleanAndReturnSize(keepList);
    std::cout << removed.itemCount.value << " removed, " << cookies->size().itemCount.value
              << " kept\n";
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: clean_with_keep_list HOME\n";
        return 2;
    }
    int status = 0;
    const auto home = bs::Home::at(arguments[1]);
    for (const bs::Browser browser : {bs::Browser::firefox, bs::Browser::googleChrome}) {
        try {
            cleanCookies(*bs::cleaner(browser, home));
        } catch (const std::exception& error) {
            std::cerr << bs::displayName(browser) << ": " << error.what() << '\n';
            status = 1;
        }
    }
    return status;
}

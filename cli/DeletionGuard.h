#pragma once

#include <optional>
#include <string>
#include <utility>

#include "browsersweep/base/Browser.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/home/Home.h"

#include "cli/Console.h"
#include "cli/Gather.h"
#include "cli/Options.h"

namespace browsersweep::cli {

/** Keeps a command from deleting under a running browser, and in another user's home. */
class DeletionGuard {
public:
    /** The options, the home and the console must outlive it. */
    DeletionGuard(const Options& options, const Home& home, CleanerFactory cleanerOf,
                  const Console& console)
        : options_(options), home_(home), cleanerOf_(std::move(cleanerOf)), console_(console) {}

    /** Whether the command may delete now. Says why not, browser by browser. */
    bool mayDelete() const;

    /** Why nothing of a browser is to be deleted now; absent where that may be done. */
    std::optional<std::string> refusal(Browser browser) const;

private:
    bool isHomeOfUser() const;
    bool mustBeClosed(const BrowserCleaner& cleaner) const;

    const Options& options_;
    const Home& home_;
    CleanerFactory cleanerOf_;
    const Console& console_;
};

}  // namespace browsersweep::cli

#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"

#include "cli/Options.h"
#include "cli/Report.h"

namespace browsersweep::cli {

/** Makes the cleaner of a browser for the home folder in question. */
using CleanerFactory = std::function<std::unique_ptr<const BrowserCleaner>(Browser)>;

/** Why nothing of a browser is to be deleted now; absent where that may be done. */
using BrowserRefusal = std::function<std::optional<std::string>(Browser)>;

/** What a command tells while it works. */
class Observer {
public:
    Observer() = default;
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    virtual ~Observer();

    /** A browser is begun; so many of all browsers are finished. */
    virtual void begin(Browser browser, std::size_t finished, std::size_t all) = 0;

    /** A category of that browser is begun. */
    virtual void begin(CleanableDataCategory category) = 0;

    /** Something the user should know that is no failure, as one line. */
    virtual void note(const std::string& line) = 0;

    /** Whether the user wants to stop. What was not begun by then stays undone. */
    virtual bool isInterrupted() const = 0;

    /** The control of the home that is worked on; null where there is none. */
    virtual std::shared_ptr<OperationControl> control() const { return nullptr; }
};

/** What stands as the error of everything that was not begun because the user interrupted. */
inline constexpr std::string_view interruptedText = "interrupted before it was begun";

/** What stands as the error of what was under way then. Of a clean it tells what is gone by then.
 */
inline constexpr std::string_view stoppedText = "interrupted before it was finished";

/**
 * Carries out a command and reports what it did, and what failed: one browser's failure never hides
 * the others. Cleaning deletes without asking the user; before each browser it asks whether that is
 * refused, and why stands as the browser's error.
 */
Report gather(const Options& options, const CleanerFactory& cleanerOf, Observer& observer,
              const BrowserRefusal& refusal = {});

/** What a clean with these options would remove. */
SizesReport preview(const Options& options, const CleanerFactory& cleanerOf, Observer& observer);

}  // namespace browsersweep::cli

#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/profiles/BrowserProfile.h"

#include "cli/ErrorText.h"
#include "cli/Gather.h"
#include "cli/Options.h"
#include "cli/ProfileLabels.h"
#include "cli/Report.h"

// What gathering any report needs.

namespace browsersweep::cli {

/** Runs one part of the work. Its failure becomes its error text and ends nothing else. */
template <typename Work>
std::optional<std::string> attempt(const Observer& observer, const Work& work) {
    if (observer.isInterrupted()) {
        return std::string(interruptedText);
    }
    try {
        work();
        return std::nullopt;
    } catch (const OperationCancelled&) {
        return std::string(stoppedText);
    } catch (const std::exception& error) {
        return errorText(error);
    }
}

/** Goes through the selected browsers in the catalogue's order. */
template <typename Row, typename Fill>
std::vector<Row> forEachBrowser(const Options& options, const CleanerFactory& cleanerOf,
                                Observer& observer, const Fill& fill) {
    std::vector<Row> rows;
    const auto browsers = options.selection.selectedBrowsers();
    for (const Browser browser : browsers) {
        observer.begin(browser, rows.size(), browsers.size());
        Row row{};
        row.browser = browser;
        fill(row, *cleanerOf(browser));
        rows.push_back(std::move(row));
    }
    return rows;
}

/** What is told of a profile. */
ProfileRow rowOf(const BrowserProfile& profile, const ProfileLabels& labels = {});

/** Whether a profile is selected; one that is, and is left out, is added to the list. */
bool selects(const Options& options, const BrowserProfile& profile,
             std::vector<LeftOutProfile>& leftOut);

}  // namespace browsersweep::cli

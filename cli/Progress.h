#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/Console.h"
#include "cli/Gather.h"
#include "cli/Interruption.h"

namespace browsersweep::cli {

/** One line of a bar and a text, such as "[######----------] Measuring Firefox: History". */
std::string progressLine(std::string_view what, std::size_t finished, std::size_t all);

/**
 * Keeps one line about the work at hand on standard error, where that is a terminal, and wipes it
 * at the end.
 */
class Progress : public Observer {
public:
    /** The verb says what is being done, such as "Measuring". */
    Progress(std::string_view verb, const Console& console, const Interruption& interruption);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() override;

    void begin(Browser browser, std::size_t finished, std::size_t all) override;
    void begin(CleanableDataCategory category) override;
    void note(const std::string& line) override;
    bool isInterrupted() const override { return interruption_.hasCome(); }

    /** Takes the line away, before something else is written. */
    void wipe() const noexcept;

private:
    void show(const std::string& what) const;

    std::string verb_;
    const Console& console_;
    const Interruption& interruption_;
    bool isShown_;
    std::string browserName_;
    std::size_t finished_ = 0;
    std::size_t all_ = 0;
};

}  // namespace browsersweep::cli

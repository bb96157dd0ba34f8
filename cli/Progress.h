#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "cli/Console.h"
#include "cli/Gather.h"

namespace browsersweep::cli {

/** How far the work is: so many parts of all. */
struct WorkDone {
    std::size_t finished = 0;
    std::size_t all = 0;
};

/**
 * One line of a bar and a text, such as "[######----------] Measuring Firefox: History", not longer
 * than so many columns. The text must be of ASCII.
 */
std::string progressLine(std::string_view what, WorkDone done, std::size_t columns);

/**
 * Keeps one line about the work at hand on standard error, where that is a terminal that can wipe a
 * line, and wipes it at the end.
 */
class Progress : public Observer {
public:
    /** The verb says what is being done, such as "Measuring". */
    Progress(std::string_view verb, const Console& console,
             std::shared_ptr<OperationControl> control);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() override;

    void begin(Browser browser, std::size_t finished, std::size_t all) override;
    void begin(CleanableDataCategory category) override;
    void note(const std::string& line) override;
    bool isInterrupted() const override { return control_->shouldStop(); }
    std::shared_ptr<OperationControl> control() const override { return control_; }

    /** Takes the line away, before something else is written. */
    void wipe() const noexcept;

private:
    void show(const std::string& what) const;

    std::string verb_;
    const Console& console_;
    std::shared_ptr<OperationControl> control_;
    bool isShown_;
    std::string browserName_;
    WorkDone done_;
};

}  // namespace browsersweep::cli

#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"

namespace browsersweep {

/** What operations have done so far: measured while sizing, deleted while cleaning. */
struct OperationProgress {
    std::uint64_t files = 0;  ///< files that were measured or deleted
    /** What the measured files held, and what was copied, in bytes. Files that are deleted are not
     * examined for it. */
    std::uint64_t bytes = 0;
    std::uint64_t rows = 0;  ///< rows of databases and cookies that were counted or deleted
    /** Whether all fields are equal. */
    friend bool operator==(const OperationProgress&, const OperationProgress&) = default;
};

/** A folder that operations did not enter although it was there, and why, for people. */
struct LeftOutFolder {
    std::filesystem::path folder;  ///< the link or the mount point itself
    std::string why;               ///< such as "it is a link"
    bool isDenied = false;         ///< the system forbids it: it is no link and no other mount
    /** Whether all fields are equal. */
    friend bool operator==(const LeftOutFolder&, const LeftOutFolder&) = default;
};

/**
 * Thrown by an operation that was told to stop, after what it was doing has been left in order: no
 * copy remains, a file is whole, and a statement that was under way is rolled back.
 */
class BROWSERSWEEP_EXPORT OperationCancelled : public std::exception {
public:
    /** With what had been done by then. */
    explicit OperationCancelled(const OperationProgress& progress) noexcept : progress_(progress) {}

    /** One sentence for people. */
    const char* what() const noexcept override;

    /** What had been done when the operation stopped. What was deleted by then stays deleted. */
    const OperationProgress& progress() const noexcept { return progress_; }

private:
    OperationProgress progress_;
};

/**
 * Asks between the steps of an operation whether to go on, and counts what was done. A host makes
 * one, gives it to a file manager, and every operation through that file manager asks it: for each
 * file of a folder, every few thousand instructions of a statement, for each piece of a copy. The
 * answer "stop" is kept, so that what would follow stops at its first step as well.
 *
 * Not to be used by two threads at once; the question may look at what another thread or a signal
 * sets.
 */
class BROWSERSWEEP_EXPORT OperationControl {
public:
    /** Whether to stop, given what has been done. Asked often: it should return at once. */
    using ShouldStop = std::function<bool(const OperationProgress&)>;

    /** Never stops; only counts. */
    OperationControl() = default;
    /** Stops when the question is answered with true, or throws. */
    explicit OperationControl(ShouldStop shouldStop) : shouldStop_(std::move(shouldStop)) {}

    /** Begins anew: nothing is done yet, nothing is stopped, and this question is asked. */
    void restart(ShouldStop shouldStop);

    /** Adds to what was done. */
    void count(const OperationProgress& done) noexcept;

    /** Whether to stop. Once true it stays true. */
    bool shouldStop() noexcept;

    /** Throws `OperationCancelled` if the operation is to stop. */
    void continueOrThrow();

    /** What was done since this control was made. */
    const OperationProgress& progress() const noexcept { return progress_; }

    /** Notes a folder that was not entered. One that is noted already is not noted again. */
    void leaveOut(const LeftOutFolder& folder);

    /** The folders that were not entered since this was asked last, in the order of their paths. */
    std::vector<LeftOutFolder> takeLeftOut();

private:
    ShouldStop shouldStop_;
    OperationProgress progress_;
    std::map<std::filesystem::path, LeftOutFolder> leftOut_;
    bool isStopped_ = false;
};

/** Asks where there is a control; without one an operation goes on. Throws as the control does. */
BROWSERSWEEP_EXPORT void continueOrThrow(OperationControl* control);

}  // namespace browsersweep

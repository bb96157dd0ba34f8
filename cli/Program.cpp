#include "cli/Program.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/home/Home.h"

#include "cli/Appearance.h"
#include "cli/BoundedFileManager.h"
#include "cli/Console.h"
#include "cli/DeletionGuard.h"
#include "cli/Doctor.h"
#include "cli/ErrorText.h"
#include "cli/FilterLimits.h"
#include "cli/Gather.h"
#include "cli/HTMLReport.h"
#include "cli/HomeRemark.h"
#include "cli/Interruption.h"
#include "cli/JSONReport.h"
#include "cli/Limits.h"
#include "cli/NewFile.h"
#include "cli/Options.h"
#include "cli/ProfileNames.h"
#include "cli/Progress.h"
#include "cli/Report.h"
#include "cli/SiteCommands.h"
#include "cli/TextReport.h"
#include "cli/UnseenText.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

enum ExitStatus { allDone = 0, somethingFailed = 1, wrongUsage = 2, interrupted = 128 };

constexpr std::array<std::string_view, 9> verbs{
    "Looking at", "Reading profiles of",  "Measuring",
    "Cleaning",   "Reading bookmarks of", "Reading permissions of",
    "Looking at", "Listing the sites of", "Forgetting the sites of",
};

/** What a command is doing while it deletes nothing. */
Command readingPartOf(Command command) noexcept {
    return command == Command::forget ? Command::sites : Command::size;
}

constexpr std::string_view fullDiskAccess =
    "macOS guards Safari's data: the terminal or application that runs this program needs Full "
    "Disk Access, in the privacy settings.";

bool isGuarded(const Failure& failure) noexcept {
    return failure.browser == Browser::safari && saysNoPermission(failure.error);
}

bool isDeleting(Command command) noexcept {
    return command == Command::clean || command == Command::forget;
}

bool isAboutSites(Command command) noexcept {
    return command == Command::sites || command == Command::forget;
}

/** One run of one command. */
class Run {
public:
    explicit Run(Options options)
        : options_(std::move(options)),
          home_(std::make_shared<BoundedFileManager>(
              options_.home ? FileManager::forHome(*options_.home, control_)
                            : FileManager::controlledBy(control_))),
          guard_(options_, home_, cleanerFactory(), console_) {}

    int execute() {
        heedKeepList();
        requireFittingFilters(options_);
        tellOfHome();
        tellOfKeepList();
        const bool areProfilesFound = settleProfilesOfSelection();
        std::optional<Report> settled;
        if (isDeletion() && (!guard_.mayDelete() || !isConfirmed(settled))) {
            return somethingFailed;
        }
        std::optional<NewFile> page;
        if (options_.html && !isPageOutput()) {
            page.emplace(*options_.html);
        }
        // A run that was killed leaves copies of private databases behind; an empty folder stays
        // where the library could not make one.
        home_.fileManager()->removeStaleTemporaryFolders();
        tellOfProtection();
        const Report report = settled ? *settled : gatherWithProgress();
        tellRemarks(report);
        home_.fileManager()->removeStaleTemporaryFolders();
        const bool isPageWritten = !page || writePage(report, *page);
        const auto signal = interruption_.take();
        interruption_.letThrough();
        console_.writeOutput(outputOf(report));
        const int status = exitStatus(report, signal);
        return isPageWritten && areProfilesFound ? status : std::max<int>(status, somethingFailed);
    }

private:
    void heedKeepList() {
        if (!isDeleting(options_.command) || options_.ignoresConfig) {
            return;
        }
        options_.keep = readKeepFile(home_.fileManager()->homeDirectory());
        if (options_.keep && options_.keep->isEmpty()) {
            options_.keep.reset();
        }
        if (options_.keep) {
            keep(*options_.keep, options_);
        }
    }

    /** What the user wants left alone for good is told in every plan and beside every result. */
    void tellOfKeepList() const {
        if (options_.keep) {
            console_.note(keepText(*options_.keep));
        }
    }

    /** Only the commands about sites know of any. */
    ProfilesBeside profilesBeside() const {
        if (!isAboutSites(options_.command)) {
            return {};
        }
        return [this](Browser browser) { return profilesOfSites(browser, home_); };
    }

    bool settleProfilesOfSelection() {
        const auto missing = settleProfiles(options_.selection, cleanerFactory(), profilesBeside());
        for (const auto& line : missing) {
            console_.note(line);
        }
        return missing.empty();
    }

    /** Whether the page takes the place of the report on standard output. */
    bool isPageOutput() const { return options_.html == Options::standardOutput; }

    std::string outputOf(const Report& report) const {
        if (isPageOutput()) {
            return pageOf(report);
        }
        return options_.json ? jsonText(report)
                             : peopleText(report, outputAppearance(), options_.view);
    }

    std::string pageOf(const Report& report) const {
        const auto date = fmt::format(
            "{:%Y-%m-%d %H:%M}", fmt::gmtime(std::chrono::time_point_cast<std::chrono::minutes>(
                                     std::chrono::system_clock::now())));
        return pageText(report, {date, limitsOf(options_)});
    }

    /** The report is still worth printing where the page cannot be written. */
    bool writePage(const Report& report, NewFile& page) const {
        try {
            page.finish(pageOf(report));
            return true;
        } catch (const std::system_error& error) {
            console_.note(error.what());
            return false;
        }
    }

    /** Says before the first figure that the system keeps data from this program. */
    void tellOfProtection() {
        constexpr std::array lookingCommands{Command::size, Command::clean, Command::sites,
                                             Command::forget};
        const bool isLooking = std::find(lookingCommands.begin(), lookingCommands.end(),
                                         options_.command) != lookingCommands.end();
        if (isProtectionTold_ || !isLooking) {
            return;
        }
        isProtectionTold_ =
            diagnose(options_.selection.selectedBrowsers(), *home_.directoryProvider())
                .isAnythingProtected();
        if (isProtectionTold_) {
            console_.note(fullDiskAccess);
        }
    }

    bool isDeletion() const noexcept { return isDeleting(options_.command) && !options_.dryRun; }

    Appearance outputAppearance() const {
        auto appearance = appearanceOf(console_.outputIsTerminal(), environmentVariable);
        appearance.columns = console_.outputColumns();
        return appearance;
    }

    Appearance errorAppearance() const {
        auto appearance = appearanceOf(console_.errorIsTerminal(), environmentVariable);
        appearance.columns = console_.errorIsTerminal() ? console_.errorColumns() : 0;
        return appearance;
    }

    SiteWork siteWork() const { return {home_, cleanerFactory(), refusalOfRunning()}; }

    BrowserRefusal refusalOfRunning() const {
        return [this](Browser browser) { return guard_.refusal(browser); };
    }

    Report gatherWithProgress() {
        const auto doing = options_.dryRun ? readingPartOf(options_.command) : options_.command;
        Progress progress(verbs[static_cast<std::size_t>(doing)], console_, control_);
        if (options_.command == Command::sites) {
            return gatherSites(options_, siteWork(), progress);
        }
        return options_.command == Command::forget
                   ? gatherForget(options_, siteWork(), progress)
                   : gather(options_, cleanerFactory(), progress, refusalOfRunning());
    }

    Report planWithProgress() {
        const auto verb = verbs[static_cast<std::size_t>(readingPartOf(options_.command))];
        Progress progress(verb, console_, control_);
        if (options_.command == Command::forget) {
            return previewForget(options_, siteWork(), progress);
        }
        return preview(options_, cleanerFactory(), progress);
    }

    /** What is to be said of sites as they were typed; once, before they are asked about. */
    void tellRemarks(const Report& report) {
        const auto* const forgetting = std::get_if<ForgetReport>(&report);
        if (forgetting == nullptr || areRemarksTold_) {
            return;
        }
        areRemarksTold_ = true;
        for (const auto& remark : forgetting->remarks) {
            console_.note(remark);
        }
    }

    /** What could not be looked at is no part of the plan: nobody should take it for nothing. */
    void tellFailuresOfPlan(const Report& planned) const {
        for (const auto& failure : failures(planned)) {
            console_.note(fmt::format("{}: {}", failure.where, failure.error));
        }
    }

    /**
     * Whether the user wants what is planned, and it may still be done. Where there is nothing to
     * do, the plan is settled as the report, and nobody is asked.
     */
    bool isConfirmed(std::optional<Report>& settled) {
        if (options_.yes) {
            return true;
        }
        tellOfProtection();
        const Report planned = planWithProgress();
        tellRemarks(planned);
        if (const auto* const plan = std::get_if<ForgetReport>(&planned);
            plan != nullptr && plan->isPointless) {
            settled = planned;
            std::get<ForgetReport>(*settled).isPlan = false;
            return true;
        }
        tellFailuresOfPlan(planned);
        console_.writeError(peopleText(planned, errorAppearance(), options_.view));
        console_.discardTypedInput();
        console_.writeError(unseenRemark(planned, errorAppearance()) + "Delete this? [y/N] ");
        interruption_.letThrough();
        const auto answer = console_.readLine();
        interruption_.holdBack();
        if (answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes") {
            // A browser may have been started while the question waited.
            return guard_.mayDelete();
        }
        console_.note("nothing was deleted");
        return false;
    }

    int exitStatus(const Report& report, std::optional<int> signal) const {
        const auto failed = failures(report);
        for (const auto& failure : failed) {
            // Of what was never begun there is nothing to tell, but that.
            if (failure.error != interruptedText) {
                console_.note(fmt::format("{}: {}", failure.where, failure.error));
            }
        }
        if (!isProtectionTold_ && std::any_of(failed.begin(), failed.end(), isGuarded)) {
            console_.note(fullDiskAccess);
        }
        if (signal) {
            console_.note("interrupted; the report says what was done");
            return interrupted + *signal;
        }
        // Newer systems hide the files of a protected folder: it looks empty, and nothing else
        // fails.
        return failed.empty() && !isProtectionTold_ ? allDone : somethingFailed;
    }

    CleanerFactory cleanerFactory() const {
        return [this](Browser browser) { return cleaner(browser, home_); };
    }

    void tellOfHome() const {
        if (const auto line = remarkOnHome(*home_.fileManager(), options_.home); !line.empty()) {
            console_.note(line);
        }
    }

    Options options_;
    bool isProtectionTold_ = false;
    bool areRemarksTold_ = false;
    Console console_;
    Interruption interruption_;
    /** Stops what is under way in the home once a signal has come. */
    std::shared_ptr<OperationControl> control_ = std::make_shared<OperationControl>(
        [this](const OperationProgress&) { return interruption_.hasCome(); });
    Home home_;
    DeletionGuard guard_;
};

void requireSomebodyToAsk(const Options& options, const Console& console) {
    if (isDeleting(options.command) && !options.yes && !options.dryRun &&
        !console.inputIsTerminal()) {
        throw UsageError(fmt::format(
            "{} cannot ask because standard input is not a terminal; add --yes to delete without a "
            "question, or --dry-run to delete nothing",
            options.command == Command::clean ? "clean" : "forget"));
    }
}

/** Asks which folders can be read; nothing of what they hold is. */
int runDoctor(const Options& options, const Console& console) {
    const Interruption pipeErrorsAreFailures;
    const Home home = options.home ? Home::at(*options.home) : Home::current();
    if (const auto line = remarkOnHome(*home.fileManager(), options.home); !line.empty()) {
        console.note(line);
    }
    const auto diagnosis =
        diagnose(options.selection.selectedBrowsers(), *home.directoryProvider());
    auto appearance = appearanceOf(console.outputIsTerminal(), environmentVariable);
    appearance.columns = console.outputColumns();
    console.writeOutput(options.json ? jsonText(diagnosis) : peopleText(diagnosis, appearance));
    return diagnosis.isAnythingDenied() ? somethingFailed : allDone;
}

int dispatch(const std::vector<std::string>& arguments, const Console& console) {
    const CommandLine commandLine = parseCommandLine(arguments);
    if (const auto* const information = std::get_if<Information>(&commandLine)) {
        const Interruption pipeErrorsAreFailures;
        console.writeOutput(information->text);
        return allDone;
    }
    auto options = std::get<Options>(commandLine);
    if (options.command == Command::doctor) {
        return runDoctor(options, console);
    }
    requireSomebodyToAsk(options, console);
    readKeepList(options.sites);
    return Run(std::move(options)).execute();
}

}  // namespace

int run(const std::vector<std::string>& arguments) {
    Console::occupyStandardStreams();
    const Console console;
    try {
        return dispatch(arguments, console);
    } catch (const UsageError& error) {
        console.note(error.what());
        return wrongUsage;
    } catch (const std::system_error& error) {
        // Who reads through `head` has seen enough, and knows it.
        if (error.code() != std::errc::broken_pipe) {
            console.note(error.what());
        }
        return somethingFailed;
    } catch (const std::exception& error) {
        console.note(error.what());
        return somethingFailed;
    }
}

}  // namespace browsersweep::cli

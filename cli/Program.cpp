#include "cli/Program.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <variant>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/hosting/RunningBrowsers.h"

#include "cli/Appearance.h"
#include "cli/BoundedFileManager.h"
#include "cli/Console.h"
#include "cli/Doctor.h"
#include "cli/ErrorText.h"
#include "cli/Gather.h"
#include "cli/HTMLReport.h"
#include "cli/Interruption.h"
#include "cli/JSONReport.h"
#include "cli/NewFile.h"
#include "cli/Options.h"
#include "cli/ProfileNames.h"
#include "cli/Progress.h"
#include "cli/Report.h"
#include "cli/TextReport.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

enum ExitStatus { allDone = 0, somethingFailed = 1, wrongUsage = 2, interrupted = 128 };

constexpr std::array<std::string_view, 6> verbs{
    "Looking at", "Reading profiles of",  "Measuring",
    "Cleaning",   "Reading bookmarks of", "Reading permissions of",
};

constexpr std::string_view fullDiskAccess =
    "macOS guards Safari's data: the terminal or application that runs this program needs Full "
    "Disk Access, in the privacy settings.";

std::string reasonOf(const RunningBrowser& found) {
    return found.program ? fmt::format("a program named '{}' is running", *found.program)
                         : "its data folder is locked";
}

bool isGuarded(const Failure& failure) noexcept {
    return failure.browser == Browser::safari && saysNoPermission(failure.error);
}

/** One run of one command. */
class Run {
public:
    explicit Run(Options options)
        : options_(std::move(options)),
          home_(std::make_shared<BoundedFileManager>(
              options_.home ? FileManager::forHome(*options_.home, control_)
                            : FileManager::controlledBy(control_))) {}

    int execute() {
        if (options_.home && !isHomeThere()) {
            console_.note(options_.home->string() + " is not an existing folder");
        }
        const bool areProfilesFound = settleProfilesOfSelection();
        if (isDeletion() && (!mayDelete() || !isConfirmed())) {
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
        const Report report = gatherWithProgress();
        home_.fileManager()->removeStaleTemporaryFolders();
        const bool isPageWritten = !page || writePage(report, *page);
        const auto signal = interruption_.take();
        interruption_.letThrough();
        console_.writeOutput(outputOf(report));
        const int status = exitStatus(report, signal);
        return isPageWritten && areProfilesFound ? status : std::max<int>(status, somethingFailed);
    }

private:
    bool settleProfilesOfSelection() {
        const auto missing = settleProfiles(options_.selection, cleanerFactory());
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
        return options_.json ? jsonText(report) : peopleText(report, outputAppearance());
    }

    std::string pageOf(const Report& report) const {
        const auto date = fmt::format(
            "{:%Y-%m-%d %H:%M}", fmt::gmtime(std::chrono::time_point_cast<std::chrono::minutes>(
                                     std::chrono::system_clock::now())));
        return htmlText(std::get<SizesReport>(report), {date, !options_.filters.empty()});
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
        const bool isMeasuring =
            options_.command == Command::size || options_.command == Command::clean;
        if (isProtectionTold_ || !isMeasuring) {
            return;
        }
        isProtectionTold_ =
            diagnose(options_.selection.selectedBrowsers(), *home_.directoryProvider())
                .isAnythingProtected();
        if (isProtectionTold_) {
            console_.note(fullDiskAccess);
        }
    }

    bool isDeletion() const noexcept {
        return options_.command == Command::clean && !options_.dryRun;
    }

    Appearance outputAppearance() const {
        return appearanceOf(console_.outputIsTerminal(), environmentVariable);
    }

    Report gatherWithProgress() {
        const auto verb = options_.dryRun ? verbs[static_cast<std::size_t>(Command::size)]
                                          : verbs[static_cast<std::size_t>(options_.command)];
        Progress progress(verb, console_, control_);
        return gather(options_, cleanerFactory(), progress);
    }

    /** Whether what is selected of the browser can be cleaned only while it is closed. */
    bool mustBeClosed(const BrowserCleaner& cleaner) const {
        try {
            const auto data = cleaner.cleanableData([this](const BrowserProfile& profile) {
                return options_.selection.includes(profile);
            });
            return std::any_of(data.lists().begin(), data.lists().end(), [this](const auto& entry) {
                return options_.selection.includes(entry.first) &&
                       entry.second.requiresClosedBrowserToClean();
            });
        } catch (const std::exception&) {
            return false;  // nothing of it will be cleaned either, and the report says why
        }
    }

    /** Says which selected browsers seem to be running; deleting under them is refused. */
    bool mayDelete() const {
        if (options_.force) {
            return true;
        }
        if (!isHomeOfUser()) {
            console_.note(
                "the home folder belongs to another user, whose links would be followed; nothing "
                "was deleted. Run as that user, or add --force.");
            return false;
        }
        bool isFree = true;
        const RunningBrowsers running(home_);
        const auto cleanerOf = cleanerFactory();
        for (const Browser browser : options_.selection.selectedBrowsers()) {
            const auto cleaner = cleanerOf(browser);
            const auto found = running.find(browser);
            if (found && mustBeClosed(*cleaner)) {
                console_.note(fmt::format(
                    "{} seems to be running ({}); nothing was deleted. Quit it, or add --force.",
                    displayName(browser), reasonOf(*found)));
                isFree = false;
            }
        }
        return isFree;
    }

    bool isConfirmed() {
        if (options_.yes) {
            return true;
        }
        tellOfProtection();
        {
            Progress progress("Measuring", console_, control_);
            const auto planned = preview(options_, cleanerFactory(), progress);
            progress.wipe();
            console_.writeError(
                peopleText(planned, appearanceOf(console_.errorIsTerminal(), environmentVariable)));
        }
        console_.writeError("Delete this? [y/N] ");
        interruption_.letThrough();
        const auto answer = console_.readLine();
        interruption_.holdBack();
        if (answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes") {
            return true;
        }
        console_.note("nothing was deleted");
        return false;
    }

    int exitStatus(const Report& report, std::optional<int> signal) const {
        const auto failed = failures(report);
        for (const auto& failure : failed) {
            console_.note(fmt::format("{}: {}", failure.where, failure.error));
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

    bool isHomeThere() const {
        const auto& files = *home_.fileManager();
        return files.fileExists(files.homeDirectory()).isDirectory;
    }

    /** Whether the home folder, where it is there, is that of the user who runs the program. */
    bool isHomeOfUser() const {
        struct stat status = {};
        return ::stat(home_.fileManager()->homeDirectory().c_str(), &status) != 0 ||
               status.st_uid == ::geteuid();
    }

    Options options_;
    bool isProtectionTold_ = false;
    Console console_;
    Interruption interruption_;
    /** Stops what is under way in the home once a signal has come. */
    std::shared_ptr<OperationControl> control_ = std::make_shared<OperationControl>(
        [this](const OperationProgress&) { return interruption_.hasCome(); });
    Home home_;
};

void requireSomebodyToAsk(const Options& options, const Console& console) {
    if (options.command == Command::clean && !options.yes && !options.dryRun &&
        !console.inputIsTerminal()) {
        throw UsageError(
            "clean cannot ask because standard input is no terminal; add --yes to delete without "
            "a question, or --dry-run to delete nothing");
    }
}

/** Asks which folders can be read; nothing of what they hold is. */
int runDoctor(const Options& options, const Console& console) {
    const Interruption pipeErrorsAreFailures;
    const Home home = options.home ? Home::at(*options.home) : Home::current();
    const auto diagnosis =
        diagnose(options.selection.selectedBrowsers(), *home.directoryProvider());
    const auto appearance = appearanceOf(console.outputIsTerminal(), environmentVariable);
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
    const auto& options = std::get<Options>(commandLine);
    if (options.command == Command::doctor) {
        return runDoctor(options, console);
    }
    requireSomebodyToAsk(options, console);
    return Run(options).execute();
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

#include "cli/Console.h"

#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "cli/Text.h"
#include "cli/Wrapping.h"

namespace browsersweep::cli {
namespace {

/** What a file system reports only when a descriptor is closed, such as a full remote disk. */
int errorOfClosing(int descriptor) noexcept {
    const int copy = ::dup(descriptor);
    return copy < 0 || ::close(copy) != 0 ? errno : 0;
}

/** What the environment says of the terminal's width, for one that does not say it itself. */
std::size_t columnsOfEnvironment() noexcept {
    constexpr std::size_t most = 10000;
    const char* const text = std::getenv("COLUMNS");
    std::size_t columns = 0;
    if (text != nullptr) {
        const std::string_view digits = text;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), columns);
        const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
        columns = isNumber && columns < most ? columns : 0;
    }
    return columns;
}

/** How many columns a terminal has; 0 where it is none or nothing says so. */
std::size_t columnsOf(int descriptor) noexcept {
    winsize size{};
    const bool isTerminal = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0;  // NOLINT: variadic
    if (!isTerminal) {
        return 0;
    }
    return size.ws_col > 0 ? size.ws_col : columnsOfEnvironment();
}

}  // namespace

int writeAll(int descriptor, std::string_view text) noexcept {
    while (!text.empty()) {
        const auto written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

void Console::occupyStandardStreams() noexcept {
    int descriptor = STDIN_FILENO;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
        descriptor = ::open("/dev/null", O_RDONLY);  // NOLINT(cppcoreguidelines-pro-type-vararg)
    }
    if (descriptor > STDERR_FILENO) {
        ::close(descriptor);
    }
}

bool Console::inputIsTerminal() const noexcept {
    return ::isatty(STDIN_FILENO) == 1;
}

bool Console::outputIsTerminal() const noexcept {
    return ::isatty(STDOUT_FILENO) == 1;
}

bool Console::errorIsTerminal() const noexcept {
    return ::isatty(STDERR_FILENO) == 1;
}

std::size_t Console::errorColumns() const noexcept {
    constexpr std::size_t usual = 80;
    const auto columns = columnsOf(STDERR_FILENO);
    return columns > 0 ? columns : usual;
}

std::size_t Console::outputColumns() const noexcept {
    return columnsOf(STDOUT_FILENO);
}

void Console::writeOutput(std::string_view text) const {
    int error = writeAll(STDOUT_FILENO, text);
    if (error == 0) {
        error = errorOfClosing(STDOUT_FILENO);
    }
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), "cannot write the whole report");
    }
}

void Console::writeError(std::string_view text) const noexcept {
    writeAll(STDERR_FILENO, text);
}

void Console::note(std::string_view line) const {
    constexpr std::size_t indent = 4;
    writeError(wrapped("browsersweep: " + printable(line), columnsOf(STDERR_FILENO), indent,
                       LongWords::kept));
}

void Console::discardTypedInput() const noexcept {
    ::tcflush(STDIN_FILENO, TCIFLUSH);
}

std::optional<std::string> Console::readLine() const {
    std::string line;
    char character = 0;
    while (true) {
        const auto count = ::read(STDIN_FILENO, &character, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return line.empty() ? std::nullopt : std::optional(line);
        }
        if (character == '\n') {
            return line;
        }
        line += character;
    }
}

}  // namespace browsersweep::cli

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace browsersweep::cli {

/** Writes everything to a descriptor, or gives the system's error number. */
int writeAll(int descriptor, std::string_view text) noexcept;

/** The program's three standard streams, used through their descriptors. */
class Console {
public:
    /**
     * Fills the places of standard streams that the caller closed, so that no file of a browser is
     * ever opened in one of them and written to by accident. Writing to such a place fails.
     */
    static void occupyStandardStreams() noexcept;

    bool inputIsTerminal() const noexcept;
    bool outputIsTerminal() const noexcept;
    bool errorIsTerminal() const noexcept;

    /** How many columns the terminal of standard error has; 80 where nothing says so. */
    std::size_t errorColumns() const noexcept;

    /** How many columns the terminal of standard output has; 0 where it is none or does not say. */
    std::size_t outputColumns() const noexcept;

    /** Writes all of the text to standard output. Throws a `std::system_error` if any is not. */
    void writeOutput(std::string_view text) const;

    /** Writes to standard error. A failure is ignored: there is no other place to report it. */
    void writeError(std::string_view text) const noexcept;

    /**
     * "browsersweep: " and one line on standard error; on a terminal that says how wide it is, in
     * lines that fit it.
     */
    void note(std::string_view line) const;

    /** The next line of standard input, without its end; absent at the end of the input. */
    std::optional<std::string> readLine() const;

    /** Forgets what was typed on the terminal before now: it answers no question to come. */
    void discardTypedInput() const noexcept;
};

}  // namespace browsersweep::cli

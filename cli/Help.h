#pragma once

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

namespace browsersweep::cli {

/**
 * Writes the help in lines of 80 columns: a summary and an overview of the program, and a text for
 * each command with the options that it takes. Its own layout is the same with every version of the
 * parser.
 */
class HelpFormatter : public CLI::FormatterBase {
public:
    /** Whether an option of the program is one of the command of this name. */
    using Belongs = std::function<bool(const CLI::Option& option, const std::string& command)>;

    explicit HelpFormatter(Belongs belongs);

    /** What fits a small terminal: the commands, some to begin with, and where more stands. */
    static std::string summary(const CLI::App& app);

    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override;

private:
    std::string overview(const CLI::App& app) const;
    std::string helpOf(const CLI::App& command) const;

    Belongs belongs_;
};

}  // namespace browsersweep::cli

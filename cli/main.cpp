#include <string>
#include <vector>

#include "cli/Program.h"

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> all(arguments, arguments + argumentCount);
    return browsersweep::cli::run({all.begin() + (all.empty() ? 0 : 1), all.end()});
}

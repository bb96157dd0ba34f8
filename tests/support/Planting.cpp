#include "tests/support/Planting.h"

#include <algorithm>
#include <cctype>
#include <ostream>

namespace browsersweep::tests {

void PrintTo(const Planting& planting, std::ostream* stream) {
    *stream << planting.file;
}

std::string nameOf(const testing::TestParamInfo<Planting>& info) {
    std::string name = info.param.file;
    name.erase(std::remove_if(name.begin(), name.end(),
                              [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }),
               name.end());
    return name;
}

}  // namespace browsersweep::tests

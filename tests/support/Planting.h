#pragma once

#include <iosfwd>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/PlantedRows.h"

namespace browsersweep::tests {

/** What is planted in one database. */
struct Planting {
    std::string file;
    PlantedRows ofBrowser;  ///< stay whatever is forgotten
    PlantedRows ofSite;     ///< for each of two sites
    /** Each names the first site in one column alone, and the second, "{t}", in all others. One
     * entry may be several rows that belong together, with ";;" between them. */
    PlantedRows crossing;
    PlantedRows lost;     ///< tell no site, or refer to rows that are gone
    PlantedRows mixed{};  ///< tell no site and go with everything
    PlantedRows alone{};  ///< of the first site, planted without anything else of it
};

/** Its file, for GoogleTest. */
void PrintTo(const Planting& planting, std::ostream* stream);

/** The letters and digits of its file. */
std::string nameOf(const testing::TestParamInfo<Planting>& info);

}  // namespace browsersweep::tests

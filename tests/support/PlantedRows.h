#pragma once

#include <string>
#include <vector>

#include "tests/support/Database.h"

namespace browsersweep::tests {

/**
 * Rows as "table|column=value|column=value", the values as SQL has them; the other columns that
 * must have one get 0 where they are numbers, and an empty text. In each text "{s}" stands for a
 * site, "{n}" for a number, and "{m}" for a protocol buffer with an address of the site. Several
 * rows may stand in one text with ";;" between them.
 */
using PlantedRows = std::vector<std::string>;

/** The same rows with a name in place of each "{t}". */
PlantedRows withSecondSite(PlantedRows rows, const std::string& site);

/** Inserts the rows for one site. */
void plant(const Database& database, const PlantedRows& rows, const std::string& site, int number);

/**
 * Inserts the rows and deletes them again, so that they stand in free pages and in free bytes of
 * pages in use: as the SQLite of macOS does it, which overwrites nothing.
 */
void plantDeleted(const Database& database, const PlantedRows& rows, const std::string& site,
                  int number);

}  // namespace browsersweep::tests

#pragma once

#include "browsersweep/base/OperationControl.h"

struct sqlite3;

namespace browsersweep {

/**
 * Keeps an open database from doing anything by itself: no trigger, no view, no virtual table, no
 * action of a foreign key, no function of a schema that could reach outside, nothing attached.
 * Returns SQLite's code: a connection that cannot be protected is not used.
 */
int protect(sqlite3* database) noexcept;

/**
 * Lets the control stop statements. SQLite counts a whole table in one instruction, during which it
 * asks nobody; a damaged tree whose pages point to the same page again and again keeps it there for
 * ever. A function of our own makes it go from row to row. Returns SQLite's code.
 */
int stopBy(OperationControl& control, sqlite3* database) noexcept;

}  // namespace browsersweep

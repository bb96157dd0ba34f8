#pragma once

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/sites/internal/TraceTable.h"
#include "browsersweep/sites/internal/TraceTableSQL.h"

struct sqlite3;

namespace browsersweep {

/**
 * What a database has of a table of ours and of its related one. A view or a virtual table of that
 * name is none. Throws as a query does.
 */
TableColumns columnsIn(sqlite3* database, const TraceTable& table, OperationControl* control);

}  // namespace browsersweep

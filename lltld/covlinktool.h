// The coverage library: the database of instrumented sources and the stub.
#pragma once

#include "lltld/counter_mode.h" // what depends on the stub mode
#include "lltld/db_number.h"    // pass 2: numbering, arrays, project file
#include "lltld/db_tidy.h"      // pass 1: merged table, copies
#include "lltld/expired_inst.h" // removal of superseded instrumentation
#include "lltld/inst_resolve.h" // symbols to sources and objects
#include "lltld/source_tab.h"   // source-file tables
#include "lltld/stub_compile.h" // compilation of the stub
#include "lltld/stub_source.h"  // the generated C source
#include "lltld/tuple_db.h"     // tuple.db

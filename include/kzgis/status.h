// Progress of long work, such as loading a data bank, reported to one handler of the program.

#ifndef KZGIS_STATUS_H
#define KZGIS_STATUS_H

#include "kzgis/export.h"

/// Receives progress reports.
///
/// @param percent  as reported: reports are passed on as they come, and may leave 0 to 100
/// @param label    what is going on; valid during the call only
/// @param context  the pointer given to `OMstatus_set_handler`
using OMstatus_handler = void (*)(int percent, const char* label, void* context);

/// Installs the process-wide handler of progress reports; null removes it.
///
/// The library reports from the caller's own thread: a handler must bear calls from as many
/// threads at once as load files.  Install it before work begins in several threads: it is
/// not guarded by a lock.
///
/// @return the handler that was installed before, or null
KZGIS_EXPORT OMstatus_handler OMstatus_set_handler(OMstatus_handler handler, void* context)
    KZGIS_SYMBOL(OMstatus_set_handler);

/// Reports progress to the installed handler; does nothing when there is none.
///
/// @param percent   how far the work has come
/// @param label     what is going on
/// @param reserved  0
/// @return always 0
KZGIS_EXPORT int OMstatus_check(int percent, const char* label, int reserved)
    KZGIS_SYMBOL(OMstatus_check);

#endif

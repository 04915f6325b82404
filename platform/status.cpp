// Progress reports of work that can take long, through one handler of the whole process.
//
// Handler and context are plain variables without a lock: a program installs them before its
// threads begin to work, and a report costs nothing while nobody listens.

#include "kzgis/status.h"

namespace {

OMstatus_handler installed_handler = nullptr;
void* installed_context = nullptr;

}  // namespace

OMstatus_handler OMstatus_set_handler(OMstatus_handler handler, void* context) {
  OMstatus_handler former = installed_handler;
  installed_handler = handler;
  installed_context = context;
  return former;
}

// The result is 0 (docs/classic.md): a handler returns nothing to pass on.
int OMstatus_check(int percent, const char* label, int /*reserved*/) {
  if (installed_handler != nullptr) installed_handler(percent, label, installed_context);
  return 0;
}

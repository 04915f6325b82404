// Makes one allocation of the program fail, and counts its blocks.  A program that links
// failing_memory.cpp allocates through it, with operator new and on the C heap, under the
// address sanitizer too.  Where that cannot be done (KZGIS_MEMORY_CAN_FAIL of CMake) such
// programs are not built.

#ifndef KZGIS_TESTS_SUPPORT_FAILING_MEMORY_H
#define KZGIS_TESTS_SUPPORT_FAILING_MEMORY_H

namespace failing_memory {

/// Lets the k-th allocation from now on fail, counted from 0: that one alone, or every later
/// one too.
void fail_from(long k, bool all_later);

/// Lets all succeed again; true when one failed meanwhile.
bool succeed();

/// How many blocks of operator new and of the C heap are in use.
long live_blocks();

}  // namespace failing_memory

#endif

// How often a program has called `fread`.  A program that links dem/changing_file_test.cpp, which
// replaces it, counts.

#ifndef KZGIS_TESTS_SUPPORT_COUNTED_READS_H
#define KZGIS_TESTS_SUPPORT_COUNTED_READS_H

extern long counted_reads;

#endif

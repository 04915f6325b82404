// How often a program has called `fread` or `read`.  A program that links
// dem/changing_file_test.cpp and shape/read_calls_test.cpp, which replace them, counts.

#ifndef KZGIS_TESTS_SUPPORT_COUNTED_READS_H
#define KZGIS_TESTS_SUPPORT_COUNTED_READS_H

extern long counted_reads;

#endif

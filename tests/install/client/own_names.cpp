// A program that has never heard of the triangulator's names and uses them for its own things:
// not one header of kzgis here.

#include <algorithm>

// What the library calls so is tables and their sizes: pointers and numbers.
int tr = 1;
double seg[16] = {2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0, 2.0};
char qs[8] = {'q', 'u', 'e', 'u', 'e', 's'};
long permute = 4;
int mchain = 5, vert = 6, mon = 7, visited = 8;
int SEGSIZE = 9, QSIZE = 10, TRSIZE = 11;

namespace {
int calls = 0;
}

// Functions of the same names and parameters as the library's.
int newnode() { return ++calls; }
int newtrap() { return ++calls; }
int initilize(int) { return ++calls; }
int release_tables() { return ++calls; }
int choose_segment() { return ++calls; }
int generate_random_ordering(int) { return ++calls; }
int construct_trapezoids(int) { return ++calls; }
int create_initial_structure(int) { return ++calls; }
int add_segment(int) { return ++calls; }
int math_N(int, int) { return ++calls; }
int math_logstar_n(int) { return ++calls; }
int monotonate_trapezoids(int) { return ++calls; }
int print_error(const char*, ...) { return ++calls; }
int triangulate_polygon(int, const int*, const double (*)[2], int (*)[3]) { return ++calls; }
int OMstatus_check(int, const char*, int) { return ++calls; }

/// Whether nobody else wrote to these or called one of them.
bool names_are_my_own() {
  const bool numbers = tr == 1 && permute == 4 && mchain == 5 && vert == 6 && mon == 7 &&
                       visited == 8 && SEGSIZE == 9 && QSIZE == 10 && TRSIZE == 11;
  return numbers && std::count(seg, seg + 16, 2.0) == 16 && qs[0] == 'q' && calls == 0;
}

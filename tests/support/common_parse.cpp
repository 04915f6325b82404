// What the headers parsed once for all tests are made for.  The other sources of
// kzgis_test_support do without where they are optimised, and CMake wants one that does not.

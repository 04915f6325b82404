#ifndef KZGIS_TESTS_SUPPORT_SINK_H
#define KZGIS_TESTS_SUPPORT_SINK_H

#include <streambuf>

/// Swallows what is written to it, without memory.
class Sink : public std::streambuf {
 protected:
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

#endif

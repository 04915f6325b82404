// Captures what the library writes to a standard stream while the object lives.

#ifndef KZGIS_TESTS_SUPPORT_CAPTURE_H
#define KZGIS_TESTS_SUPPORT_CAPTURE_H

#include <array>
#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

class StreamCapture {
 public:
  explicit StreamCapture(std::ostream& stream)
      : stream_(stream), saved_(stream.rdbuf(text_.rdbuf())) {}
  ~StreamCapture() { stream_.rdbuf(saved_); }
  StreamCapture(const StreamCapture&) = delete;
  StreamCapture& operator=(const StreamCapture&) = delete;

  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::ostream& stream_;
  std::streambuf* saved_;
};

struct StderrCapture : StreamCapture {
  StderrCapture() : StreamCapture(std::cerr) {}
};
struct StdoutCapture : StreamCapture {
  StdoutCapture() : StreamCapture(std::cout) {}
};

/// Captures the first thousand characters of standard error, without memory.
class FixedCapture : private std::streambuf {
 public:
  FixedCapture() : saved_(std::cerr.rdbuf(this)) {
    setp(room_.data(), room_.data() + room_.size());
  }
  ~FixedCapture() override { std::cerr.rdbuf(saved_); }
  FixedCapture(const FixedCapture&) = delete;
  FixedCapture& operator=(const FixedCapture&) = delete;

  std::string text() const { return {pbase(), pptr()}; }

 private:
  std::array<char, 1000> room_{};
  std::streambuf* saved_;
};

#endif

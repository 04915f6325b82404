#ifndef KZGIS_TESTS_SUPPORT_TIME_LIMIT_H
#define KZGIS_TESTS_SUPPORT_TIME_LIMIT_H

#include <gtest/gtest.h>

#include <ctime>

#include "support/sanitized.h"

/// Expects the rest of its scope to take less than a second, whatever the file: that is what
/// the readers promise for damaged ones.
///
/// It is the processor's time that counts, so that a busy machine fails no test.  Sanitizers
/// take many times as long and are given ten seconds.
class LessThanASecond {
 public:
  LessThanASecond() = default;
  ~LessThanASecond() {
    const double taken_s = static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC;
    EXPECT_LT(taken_s, kLimit_s) << "seconds of processor time";
  }
  LessThanASecond(const LessThanASecond&) = delete;
  LessThanASecond& operator=(const LessThanASecond&) = delete;

 private:
#ifdef KZGIS_SANITIZED
  static constexpr double kLimit_s = 10.0;
#else
  static constexpr double kLimit_s = 1.0;
#endif
  const std::clock_t start_ = std::clock();
};

#endif

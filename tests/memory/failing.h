// Operations whose allocations fail, each in turn, alone and with all that follow.
//
// Each file of this folder lists the operations of a subsystem, and makes a test of each with
// INSTANTIATE_TEST_SUITE_P(Subsystem, FailingMemory, testing::ValuesIn(...), name_of).

#ifndef KZGIS_TESTS_MEMORY_FAILING_H
#define KZGIS_TESTS_MEMORY_FAILING_H

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <ostream>
#include <set>
#include <streambuf>
#include <string>

#include "support/failing_memory.h"
#include "support/sink.h"

/// The result of an operation that threw `std::bad_alloc`.
inline constexpr long kThrew = -1000;

/// Longer than what a string keeps inside itself.
inline constexpr const char* kText = "a text that is longer than what a string keeps inside itself";

/// An operation whose number tells how it went.
struct Operation {
  std::string name;
  long allocations;         ///< that it makes, or more; with 0 it makes none
  std::set<long> failures;  ///< what it gives without memory: all of it, and nothing else
  std::function<long()> run;
  /// Made before, with memory.  What it allocates `run` releases.
  std::function<void()> prepare = [] {};
};

inline void PrintTo(const Operation& operation, std::ostream* os) { *os << operation.name; }

inline std::string name_of(const testing::TestParamInfo<Operation>& info) {
  return info.param.name;
}

/// Keeps what is written to the standard streams from taking memory.
class QuietStreams {
 public:
  QuietStreams();
  ~QuietStreams();
  QuietStreams(const QuietStreams&) = delete;
  QuietStreams& operator=(const QuietStreams&) = delete;

 private:
  Sink sink_;
  std::streambuf* cout_;
  std::streambuf* cerr_;
};

class FailingMemory : public testing::TestWithParam<Operation> {
 private:
  QuietStreams quiet_;
};

/// Where reports go that are only to be written.
std::ostream& nowhere();

/// Fails each allocation of an `attempt` on an object, alone and with all later ones: the object
/// must then do its `work`.
template <typename Object, typename... Arguments>
void expect_usable_again(const std::function<void(Object&)>& attempt,
                         const std::function<void(Object&)>& work, Arguments... arguments) {
  const QuietStreams quiet;
  for (const bool all_later : {false, true}) {
    bool failed = true;
    for (long k = 0; failed; ++k) {
      SCOPED_TRACE("allocation " + std::to_string(k));
      Object object(arguments...);
      failing_memory::fail_from(k, all_later);
      try {
        attempt(object);
      } catch (const std::bad_alloc&) {
      }
      failed = failing_memory::succeed();
      work(object);
      if (testing::Test::HasFailure()) return;
      if (!failed) {
        EXPECT_GT(k, 0);
      }
    }
  }
}

#endif

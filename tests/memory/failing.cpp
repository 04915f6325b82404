#include "memory/failing.h"

#include <iostream>

namespace {

/// How an operation went, exceptions included.
long result_of(const Operation& operation) {
  try {
    return operation.run();
  } catch (const std::bad_alloc&) {
    return kThrew;
  }
}

}  // namespace

QuietStreams::QuietStreams() : cout_(std::cout.rdbuf(&sink_)), cerr_(std::cerr.rdbuf(&sink_)) {}

QuietStreams::~QuietStreams() {
  std::cout.rdbuf(cout_);
  std::cerr.rdbuf(cerr_);
}

std::ostream& nowhere() {
  static Sink sink;
  static std::ostream stream(&sink);
  return stream;
}

TEST_P(FailingMemory, IsDocumentedLeaksNothingAndIsOver) {
  const Operation& operation = GetParam();
  const auto run = [&operation] {
    operation.prepare();
    return result_of(operation);
  };
  const long complete = run();  // and what is allocated once, is
  ASSERT_EQ(run(), complete);
  ASSERT_FALSE(operation.failures.contains(complete)) << complete;
  std::set<long> failures;
  for (const bool all_later : {false, true}) {
    long k = 0;
    for (bool failed = true; failed; ++k) {
      SCOPED_TRACE("allocation " + std::to_string(k) + (all_later ? " and all later" : ""));
      ASSERT_LT(k, 100000);
      const long before = failing_memory::live_blocks();
      operation.prepare();
      failing_memory::fail_from(k, all_later);
      const long result = result_of(operation);
      failed = failing_memory::succeed();
      ASSERT_EQ(failing_memory::live_blocks(), before);
      if (result == complete) continue;
      ASSERT_TRUE(failed && operation.failures.contains(result)) << "gives " << result;
      failures.insert(result);
    }
    const int allocations = static_cast<int>(k - 1);
    if (operation.allocations == 0) {
      EXPECT_EQ(allocations, 0);
    } else {
      EXPECT_GE(allocations, operation.allocations);
    }
    RecordProperty(all_later ? "allocations, all later" : "allocations", allocations);
  }
  EXPECT_EQ(failures, operation.failures);
  EXPECT_EQ(run(), complete);
}

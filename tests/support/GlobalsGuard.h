#pragma once

#include <gtest/gtest.h>

#include <atomic>

#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/StopToken.h"

namespace platenest {

// Fails the test that leaves a process-wide stop flag or this thread's stop token changed, and puts the flags back for
// the tests after it. Every test of an executable that includes this header is watched.
class TGlobalsGuard : public testing::EmptyTestEventListener {
 public:
  void OnTestStart(const testing::TestInfo&) override { FToken = CurrentStopToken(); }
  void OnTestEnd(const testing::TestInfo&) override { Check(); }

  void Check() const {
    EXPECT_FALSE(RectNestTerminated.exchange(false)) << "RectNestTerminated is left set";
    EXPECT_FALSE(ColumnGenerationTerminated.exchange(false)) << "ColumnGenerationTerminated is left set";
    EXPECT_EQ(CurrentStopToken(), FToken) << "a stop token is left behind";
  }

 private:
  const TStopToken* FToken = nullptr;
};

namespace detail {
inline const bool globalsAreGuarded = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new TGlobalsGuard);  // owned by the list
  return true;
}();
}  // namespace detail

}  // namespace platenest

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "Shapes.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"
#include "platenest/services/NFP.h"

namespace platenest {
namespace {

constexpr unsigned kPairs = 12;

std::vector<TPaths> Answers(unsigned FirstSeed) {
  std::vector<TPaths> answers;
  for (unsigned i = 0; i < kPairs; ++i) {
    SetSeed(i);
    const TShapePair pair = MakePair(16, FirstSeed + i);
    answers.push_back(*TNFPCalculator::CalcNFP(pair.Dynamic, pair.Static, i % 4 == 3, ntComplete, "", "").NFP);
  }
  // One pair that takes the whole ladder of an outer pair, and one that fails and is logged.
  const TVHPolygon corner{{{{0, 0}, {100, 0}, {100, 50}, {50, 50}, {50, 100}, {0, 100}}}};
  const TVHPolygon tiny{{{{0, 0}, {0.02, 0}, {0, 0.02}}}};
  answers.push_back(*TNFPCalculator::CalcNFP(tiny, corner, false, ntComplete, "", "").NFP);
  const TVHPolygon line{{{{0, 0}, {1, 0}}}};
  EXPECT_THROW(TNFPCalculator::CalcNFP(line, corner, false, ntComplete, "", ""), TNestError);
  return answers;
}

TEST(NfpThreads, SeparateRequestsAgreeWithSingleRuns) {
  const Int64 before = TNFPCalculator::CalcNFPCount;
  const std::vector<TPaths> expected[] = {Answers(0), Answers(1000)};
  std::vector<TPaths> found[2];
  {
    std::jthread one([&found] { found[0] = Answers(0); });
    std::jthread two([&found] { found[1] = Answers(1000); });
  }
  EXPECT_EQ(found[0], expected[0]);
  EXPECT_EQ(found[1], expected[1]);
  EXPECT_EQ(TNFPCalculator::CalcNFPCount - before, 4 * (kPairs + 2));
}

}  // namespace
}  // namespace platenest

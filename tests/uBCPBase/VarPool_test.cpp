#include "platenest/uBCPBase/VarPool.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>
#include <tuple>

#include "CuttingStock1D.h"
#include "ForEachSeed.h"

namespace platenest {
namespace {

using testing::ElementsAre;

// A pattern that is the same as another of equal counts up to a distance in its mark: no equivalence, so it matters
// which column of the pool comes first.
class TMarked : public TBarPattern {
 public:
  using TBarPattern::TBarPattern;
  std::unique_ptr<TBCPVariable> Clone() const override {
    if (Usage == 7) throw TNestError("no copy");
    return std::make_unique<TMarked>(*this);
  }
  bool IsSameWith(const TBCPVariable& AVar) const override {
    return TBarPattern::IsSameWith(AVar) && std::fabs(dynamic_cast<const TMarked&>(AVar).Usage - Usage) <= 1;
  }
};

TEST(VarPool, FindsTheSameColumnAsAWalkOverThePool) {
  ForEachSeed(20, [](unsigned Seed) {
    std::mt19937 random(Seed);
    const auto below = [&random](unsigned N) { return static_cast<int>(random() % N); };
    TVarPool<TMarked> pool({9, 9, 9}, {1, 1, 1});
    for (int i = 0; i < 300; ++i) {
      const TMarked var({below(3), below(3), below(2)}, below(8));
      int expected = 0;
      while (expected < pool.Count() && !var.IsSameWith(pool[expected])) ++expected;
      const bool isKnown = expected < pool.Count();
      bool exists = !isKnown;
      if (!isKnown && var.Usage == 7) {
        EXPECT_THROW(pool.AddVar(var, exists), TNestError) << "which leaves nothing behind";
      }
      const int index = var.Usage != 7 ? pool.AddVar(var, exists) : pool.AddVar(std::make_unique<TMarked>(var), exists);
      ASSERT_EQ(index, expected);
      ASSERT_EQ(exists, isKnown);
      ASSERT_TRUE(var.IsSameWith(pool[index]));
    }
    ASSERT_GT(pool.Count(), 18) << "columns of equal coefficients";
  });
}

TEST(VarPool, AColumnEntersWhereItFitsTheOpenDemand) {
  constexpr int kRefused = -9;
  constexpr int kUnbounded = std::numeric_limits<int>::max();
  // Columns have main rows 0 to 3, demands rows 0, 2 and 3: row 1 is closed.
  using TCase = std::tuple<TIntegerDynArray, TDoubleDynArray, int>;
  for (const auto& [column, demand, maxAmount] : {TCase{{1, 0, 0, 0}, {3.9, 0, 0}, 3},
                                                  {{2, 0, 3, 0}, {5, 4, 1}, 1},
                                                  {{2, 0, 5, 0}, {5, 4.9, 1}, kRefused},
                                                  {{1, 1, 0, 0}, {5, 4, 1}, kRefused},
                                                  {{1, -1, 0, 0}, {5, 4, 1}, 5},
                                                  {{0, 0, 0, 0}, {5, 4, 1}, kUnbounded},
                                                  {{1, 0, 0, 0}, {1e12, 4, 1}, kUnbounded},
                                                  {{1, 0, 0, 0}, {1e300, 4, 1}, kRefused},  // no whole number
                                                  {{0, 0, -2, 0}, {5, 5, 1}, -2},
                                                  {{0, 0, -2, 0}, {5, 0.5, 1}, 0},
                                                  {{1, 0, 0, 0}, {5, -1, 1}, kRefused},  // its 0 is above that demand
                                                  {{1, 0, -9, 0}, {5, -4, 1}, 0}}) {
    TVarPool<TBarPattern> pool({1, 1, 1, 1}, {1, 1, 1, 1});
    bool exists = false;
    pool.AddVar(TBarPattern(column, 0), exists);
    TDoubleDynArray local;
    int amount = kRefused;
    const bool fits = pool.GetSatisfiedColumn({0, 2, 3}, demand, 0, amount, local);
    SCOPED_TRACE(testing::PrintToString(column) + testing::PrintToString(demand));
    EXPECT_EQ(fits ? amount : kRefused, maxAmount);
    EXPECT_EQ(local, fits ? pool.GetColumn(0, {0, 2, 3}) : TDoubleDynArray());
  }
}

}  // namespace
}  // namespace platenest

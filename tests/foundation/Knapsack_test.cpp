#include "platenest/foundation/Knapsack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <tuple>
#include <vector>

#include "ForEachSeed.h"
#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();

struct TProblem {
  std::vector<int> Weights;
  std::vector<Int64> Values;
  std::vector<int> Limits;  // empty: unbounded
  Int64 Capacity = 0;
};

struct TAnswer {
  Int64 Value = 0;
  std::vector<int> Counts;

  friend bool operator==(const TAnswer&, const TAnswer&) = default;
  friend std::ostream& operator<<(std::ostream& Out, const TAnswer& Answer) {
    return Out << Answer.Value << " by " << testing::PrintToString(Answer.Counts);
  }
};

TAnswer Solve(const TProblem& P) {
  TAnswer answer;
  answer.Value =
      P.Limits.empty()
          ? TKnapsackSolver::SolveInfiniteKnapsack(P.Weights, P.Values, P.Capacity, answer.Counts)
          : TKnapsackSolver::SolveMultiKnapsack(P.Weights, P.Values, TItemLimits(P.Limits), P.Capacity, answer.Counts);
  return answer;
}

// The stated answer by trying all: the highest value; then, with the items by falling value per weight, the earliest
// last item, the least weight, the fewest pieces from the last item back.
class TExhaustive {
 public:
  explicit TExhaustive(const TProblem& P) : FProblem(P), FCounts(P.Weights.size()), FOrder(P.Weights.size()) {
    std::iota(FOrder.begin(), FOrder.end(), 0);
    std::ranges::stable_sort(FOrder,
                             [&](int a, int b) { return P.Values[a] * P.Weights[b] > P.Values[b] * P.Weights[a]; });
  }

  TAnswer Run() {
    FBest = {};
    Try(0, FProblem.Capacity, 0);
    TAnswer answer{-std::get<0>(FBest), std::vector<int>(FCounts.size())};
    for (int i = 0; i < Size(FOrder); ++i) answer.Counts[FOrder[Size(FOrder) - 1 - i]] = std::get<3>(FBest)[i];
    return answer;
  }

 private:
  void Try(int Place, Int64 Room, Int64 Value) {
    if (Place == Size(FOrder)) return Judge(Room, Value);
    const int item = FOrder[Place];
    const int limit = FProblem.Limits.empty() ? kMaxInt : FProblem.Limits[item];
    for (int count = 0; count <= limit && count * FProblem.Weights[item] <= Room; ++count) {
      FCounts[Place] = count;
      Try(Place + 1, Room - count * FProblem.Weights[item], Value + count * FProblem.Values[item]);
    }
  }

  void Judge(Int64 Room, Int64 Value) {
    std::vector<int> back(FCounts.rbegin(), FCounts.rend());
    const auto unused = std::ranges::find_if(back, [](int count) { return count > 0; }) - back.begin();
    const TRank rank{-Value, -unused, FProblem.Capacity - Room, back};
    if (std::get<3>(FBest).empty() || rank < FBest) FBest = rank;
  }

  using TRank = std::tuple<Int64, Int64, Int64, std::vector<int>>;

  const TProblem& FProblem;
  std::vector<int> FCounts;  // in the order of FOrder
  std::vector<int> FOrder;
  TRank FBest;
};

// The best value for every capacity up to P.Capacity, one piece at a time.
Int64 BestValueByTable(const TProblem& P) {
  std::vector<Int64> best(P.Capacity + 1);
  for (int i = 0; i < Size(P.Weights); ++i) {
    if (P.Limits.empty())
      for (Int64 c = P.Weights[i]; c <= P.Capacity; ++c)
        best[c] = std::max(best[c], best[c - P.Weights[i]] + P.Values[i]);
    else
      for (int piece = 0; piece < P.Limits[i]; ++piece)
        for (Int64 c = P.Capacity; c >= P.Weights[i]; --c)
          best[c] = std::max(best[c], best[c - P.Weights[i]] + P.Values[i]);
  }
  return best.back();
}

// Legal, and worth what it claims.
void ExpectReproduces(const TProblem& P, const TAnswer& Answer) {
  Int64 weight = 0;
  Int64 value = 0;
  ASSERT_EQ(Answer.Counts.size(), P.Weights.size());
  for (int i = 0; i < Size(P.Weights); ++i) {
    EXPECT_GE(Answer.Counts[i], 0);
    EXPECT_LE(Answer.Counts[i], P.Limits.empty() ? kMaxInt : std::max(P.Limits[i], 0));
    weight += Int64{Answer.Counts[i]} * P.Weights[i];
    value += Answer.Counts[i] * P.Values[i];
  }
  EXPECT_LE(weight, P.Capacity);
  EXPECT_EQ(value, Answer.Value);
}

class TDice {
 public:
  explicit TDice(unsigned Seed) : FRandom(Seed) {}
  int From(int Low, int High) { return std::uniform_int_distribution(Low, High)(FRandom); }

 private:
  std::mt19937 FRandom;
};

// Small weights in steps, so that divisors and ties are frequent; Values in units of Scale, near the weights.
TProblem RandomProblem(TDice& Dice, int Items, int MaxWeight, int MaxLimit, Int64 Scale) {
  TProblem p;
  const int step = Dice.From(1, 3);
  const int spread = Dice.From(0, 4);
  for (int i = 0; i < Items; ++i) {
    p.Weights.push_back(step * Dice.From(1, MaxWeight));
    p.Values.push_back(Scale * std::max(1, p.Weights[i] + Dice.From(-spread, spread)));
    if (MaxLimit > 0) p.Limits.push_back(Dice.From(0, MaxLimit));
  }
  return p;
}

// Wide values, rooms on both sides of where the search changes from states to cells, and, without limits, room for so
// many pieces that the capacity plays no part in the search.
TEST(Knapsack, AnswerIsTheStatedOneOfAllBestAnswers) {
  ForEachSeed(1860, [](unsigned seed) {
    TDice dice(seed);
    const bool bounded = seed % 5 != 0;
    const bool much = !bounded && seed % 3 == 0;
    const Int64 scale = seed % 2 == 0 ? 1 : 1'000'000'000'000;
    const int items = much ? 3 : dice.From(1, bounded ? 6 : 4);
    TProblem p = RandomProblem(dice, items, much ? 11 : !bounded ? 15 : seed % 3 == 0 ? 60 : 9, bounded ? 5 : 0, scale);
    if (much) std::ranges::for_each(p.Weights, [](int& weight) { weight += 3; });
    p.Capacity = bounded ? dice.From(1, 12 * p.Weights[0] + 20)
                 : much  ? 32 * *std::ranges::max_element(p.Weights) + dice.From(0, 15)
                         : dice.From(1, 70);
    const TAnswer answer = Solve(p);
    EXPECT_EQ(answer, TExhaustive(p).Run());
    ExpectReproduces(p, answer);
  });
}

// Items of nearly equal value per weight, so that good answers mix many pieces. In every tenth round the capacity is a
// million, and the best mix regardless of the capacity may be heavier than that.
TEST(Knapsack, ValueMatchesTheFullTable) {
  ForEachSeed(360, [](unsigned seed) {
    TDice dice(seed);
    const bool million = seed % 10 == 0;
    TProblem p{{}, {}, {}, million ? 1'000'000 - dice.From(0, 5000) : dice.From(2500, 3500)};
    const bool bounded = seed % 12 < 2;
    if (bounded) {
      p = RandomProblem(dice, dice.From(5, 25), dice.From(20, 400), 12, seed % 2 == 0 ? 1 : 1'000'000'000);
      p.Capacity = dice.From(500, 6000);
    }
    for (int i = bounded ? 0 : million ? 3 : dice.From(3, 6); i > 0; --i) {
      p.Weights.push_back(million ? dice.From(1700, 7500) : dice.From(10, 75));
      p.Values.push_back(million ? p.Weights.back() + dice.From(-2, 2) : 20 * p.Weights.back() + dice.From(-20, 20));
    }
    const TAnswer answer = Solve(p);
    EXPECT_EQ(answer.Value, BestValueByTable(p));
    ExpectReproduces(p, answer);
  });
}

TEST(Knapsack, TiesGoToTheDenserThenTheEarlierItem) {
  EXPECT_EQ(Solve({{4, 4}, {7, 7}, {1, 1}, 4}).Counts, (std::vector{1, 0}));
  EXPECT_EQ(Solve({{4, 3}, {7, 7}, {1, 1}, 4}).Counts, (std::vector{0, 1}));
  EXPECT_EQ(Solve({{2, 4}, {2, 4}, {2, 1}, 4}).Counts, (std::vector{2, 0}));
  EXPECT_EQ(Solve({{4, 2}, {4, 2}, {}, 4}).Counts, (std::vector{1, 0}));
}

TEST(Knapsack, ItemsThatCannotBeUsedCountZero) {
  // Value 0, negative value, negative weight, too heavy, limits 0 and below.
  const TProblem p{{1, 1, -1, 11, 5, 5, 5}, {0, -3, 9, 99, 8, 8, 8}, {9, 9, 9, 9, 0, -1, 1}, 10};
  EXPECT_EQ(Solve(p), (TAnswer{8, {0, 0, 0, 0, 0, 0, 1}}));
  TProblem unbounded = p;
  unbounded.Limits.clear();
  EXPECT_EQ(Solve(unbounded), (TAnswer{16, {0, 0, 0, 0, 2, 0, 0}}));
  EXPECT_EQ(Solve({{}, {}, {}, 10}), TAnswer{});
}

TEST(Knapsack, WeightlessItemsAreUsedUpToTheirLimitAndLeftOutWithoutOne) {
  EXPECT_EQ(Solve({{0, 3}, {5, 4}, {2, 9}, 3}), (TAnswer{14, {2, 1}}));
  EXPECT_EQ(Solve({{0, 3}, {5, 4}, {}, 3}), (TAnswer{4, {0, 1}}));
  for (const Int64 capacity : {Int64{0}, std::numeric_limits<Int64>::min()})
    EXPECT_EQ(Solve({{0, 3}, {5, 4}, {2, 9}, capacity}), (TAnswer{0, {0, 0}}));
}

TEST(Knapsack, EverythingIsTakenWhenItFits) {
  const TProblem p{{7, 5, 9}, {1, 9, 4}, {20, kMaxInt, 3}, std::numeric_limits<Int64>::max()};
  EXPECT_EQ(Solve(p), (TAnswer{20 + Int64{9} * kMaxInt + 12, {20, kMaxInt, 3}}));
}

TEST(Knapsack, RaisesBeforeSumsOverflowAndLeavesCountsAlone) {
  constexpr Int64 half = Int64{1} << 60;
  EXPECT_THROW(Solve({{1, 1}, {half, half}, {1, 1}, 2}), TRangeError);
  EXPECT_EQ(Solve({{1, 1}, {half - 1, half - 1}, {1, 1}, 2}).Value, 2 * (half - 1));
  EXPECT_THROW(Solve({{1}, {1}, {1, 1}, 5}), TArgumentError);
  std::vector<int> counts{42};
  EXPECT_THROW(TKnapsackSolver::SolveInfiniteKnapsack(std::vector{1}, std::vector{1}, Int64{kMaxInt} + 1, counts),
               TRangeError);
  EXPECT_THROW(TKnapsackSolver::SolveInfiniteKnapsack(std::vector{1, 2}, std::vector{1}, 5, counts), TArgumentError);
  EXPECT_EQ(counts, std::vector{42});
}

}  // namespace
}  // namespace platenest

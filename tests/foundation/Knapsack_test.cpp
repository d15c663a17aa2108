#include "platenest/foundation/Knapsack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>
#include <vector>

#include "ForEachSeed.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();

struct TProblem {
  std::vector<int> Weights;
  std::vector<Int64> Values;
  std::vector<int> Limits;  // empty: unbounded
  Int64 Capacity = 0;
};

using TAnswer = std::pair<Int64, std::vector<int>>;  // value and counts

TAnswer Solve(const TProblem& P) {
  std::vector<int> counts;
  const Int64 value = P.Limits.empty() ? TKnapsackSolver::SolveInfiniteKnapsack(P.Weights, P.Values, P.Capacity, counts)
                                       : TKnapsackSolver::SolveMultiKnapsack(P.Weights, P.Values, TItemLimits(P.Limits),
                                                                             P.Capacity, counts);
  return {value, counts};
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
    for (int i = 0; i < Size(FOrder); ++i) answer.second[FOrder[Size(FOrder) - 1 - i]] = std::get<3>(FBest)[i];
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

void ExpectReproduces(const TProblem& P, const TAnswer& Answer) {
  Int64 weight = 0;
  Int64 value = 0;
  for (int i = 0; i < Size(P.Weights); ++i) {
    const int count = Answer.second[i];
    EXPECT_TRUE(count >= 0 && (P.Limits.empty() || count <= P.Limits[i]));
    weight += Int64{count} * P.Weights[i];
    value += count * P.Values[i];
  }
  EXPECT_LE(weight, P.Capacity);
  EXPECT_EQ(value, Answer.first);
}

int From(int Low, int High) {
  return Low + Random(High - Low + 1);
}

// Small weights in steps, so that divisors and ties are frequent; Values in units of Scale, near the weights.
TProblem RandomProblem(int Items, int MaxWeight, int MaxLimit, Int64 Scale) {
  TProblem p;
  const int step = From(1, 3);
  const int spread = From(0, 4);
  for (int i = 0; i < Items; ++i) {
    p.Weights.push_back(step * From(1, MaxWeight));
    p.Values.push_back(Scale * std::max(1, p.Weights[i] + From(-spread, spread)));
    if (MaxLimit > 0) p.Limits.push_back(From(0, MaxLimit));
  }
  return p;
}

// Few pieces, and so many that the capacity plays no part in the unbounded search; wide values, and rooms on both sides
// of where the bounded search changes from states to cells.
TEST(Knapsack, TheAnswerIsTheStatedOneOfAllBestAnswers) {
  ForEachSeed(1800, [](unsigned seed) {
    const TRandomScope scope(seed);
    const Int64 scale = seed % 2 == 0 ? 1 : 1'000'000'000'000;
    TProblem p;
    if (seed % 5 != 0) {
      p = RandomProblem(From(1, 6), seed % 3 == 0 ? 60 : 9, 5, scale);
      p.Capacity = From(1, 12 * p.Weights[0] + 20);
    } else if (seed % 3 != 0) {
      p = RandomProblem(From(1, 4), 15, 0, scale);
      p.Capacity = From(1, 70);
    } else {
      p = RandomProblem(3, 11, 0, scale);
      std::ranges::for_each(p.Weights, [](int& weight) { weight += 3; });
      p.Capacity = 32 * *std::ranges::max_element(p.Weights) + From(0, 15);
    }
    EXPECT_EQ(Solve(p), TExhaustive(p).Run());
  });
}

// Items of nearly equal value per weight, so that good answers mix many pieces. In every tenth round the capacity is a
// million, and the best mix regardless of the capacity may be heavier than that.
TEST(Knapsack, ValuesMatchTheFullTable) {
  ForEachSeed(300, [](unsigned seed) {
    const TRandomScope scope(seed);
    TProblem p;
    if (seed % 5 == 1) {
      p = RandomProblem(From(5, 25), From(20, 400), 12, seed % 2 == 0 ? 1 : 1'000'000'000);
      p.Capacity = From(500, 6000);
    } else {
      const bool million = seed % 10 == 0;
      p.Capacity = million ? 1'000'000 - From(0, 5000) : From(2500, 3500);
      for (int i = million ? 3 : From(3, 6); i > 0; --i) {
        p.Weights.push_back(million ? From(1700, 7500) : From(10, 75));
        p.Values.push_back(million ? p.Weights.back() + From(-2, 2) : 20 * p.Weights.back() + From(-20, 20));
      }
    }
    const TAnswer answer = Solve(p);
    EXPECT_EQ(answer.first, BestValueByTable(p));
    ExpectReproduces(p, answer);
  });
}

TEST(Knapsack, ItemsThatCannotBeUsedCountZero) {
  // Value 0, negative value, negative weight, too heavy, limits 0 and below.
  const TProblem p{{1, 1, -1, 11, 5, 5, 5}, {0, -3, 9, 99, 8, 8, 8}, {9, 9, 9, 9, 0, -1, 1}, 10};
  EXPECT_EQ(Solve(p), (TAnswer{8, {0, 0, 0, 0, 0, 0, 1}}));
  TProblem unbounded = p;
  unbounded.Limits.clear();
  EXPECT_EQ(Solve(unbounded), (TAnswer{16, {0, 0, 0, 0, 2, 0, 0}}));
}

TEST(Knapsack, WeightlessItemsAreUsedUpToTheirLimitAndLeftOutWithoutOne) {
  EXPECT_EQ(Solve({{0, 3}, {5, 4}, {2, 9}, 3}), (TAnswer{14, {2, 1}}));
  EXPECT_EQ(Solve({{0, 3}, {5, 4}, {}, 3}), (TAnswer{4, {0, 1}}));
  for (const Int64 capacity : {Int64{0}, Int64{-5}, std::numeric_limits<Int64>::min()}) {
    EXPECT_EQ(Solve({{0, 3}, {5, 4}, {2, 9}, capacity}), (TAnswer{0, {0, 0}}));
    EXPECT_EQ(Solve({{0, 3}, {5, 4}, {}, capacity}), (TAnswer{0, {0, 0}}));
  }
}

TEST(Knapsack, EverythingIsTakenWhenItFits) {
  const TProblem p{{7, 5, 9}, {1, 9, 4}, {20, kMaxInt, 3}, std::numeric_limits<Int64>::max()};
  EXPECT_EQ(Solve(p), (TAnswer{20 + Int64{9} * kMaxInt + 12, {20, kMaxInt, 3}}));
}

TEST(Knapsack, RaisesBeforeSumsOverflowAndLeavesCountsAlone) {
  constexpr Int64 half = Int64{1} << 60;
  std::vector<int> counts{42};
  const auto solveTwo = [&](Int64 value) {
    return TKnapsackSolver::SolveMultiKnapsack(std::vector{1, 1}, std::vector{value, value},
                                               TItemLimits(std::vector{1, 1}), 2, counts);
  };
  EXPECT_THROW(solveTwo(half), TRangeError);
  EXPECT_THROW(TKnapsackSolver::SolveInfiniteKnapsack(std::vector{1}, std::vector{1}, Int64{kMaxInt} + 1, counts),
               TRangeError);
  EXPECT_THROW(TKnapsackSolver::SolveInfiniteKnapsack(std::vector{1, 2}, std::vector{1}, 5, counts), TArgumentError);
  EXPECT_THROW(
      TKnapsackSolver::SolveMultiKnapsack(std::vector{1}, std::vector{1}, TItemLimits(std::vector{1, 1}), 5, counts),
      TArgumentError);
  EXPECT_EQ(counts, std::vector{42});
  EXPECT_EQ(solveTwo(half - 1), 2 * (half - 1));
}

TEST(Knapsack, CountsMayReplaceAListThatWasPassedIn) {
  std::vector<int> list{2, 1};
  EXPECT_EQ(TKnapsackSolver::SolveMultiKnapsack(list, list, TItemLimits(list), 3, list), 3);
  EXPECT_EQ(list, (std::vector{1, 1}));
}

}  // namespace
}  // namespace platenest

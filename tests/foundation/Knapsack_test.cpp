#include "platenest/foundation/Knapsack.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <numeric>
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

// The stated answer, from tables over exact weights: the highest value; then, with the items by falling value per
// weight, the earliest last item, the least weight, the fewest pieces from the last item back.
TAnswer Stated(const TProblem& P) {
  std::vector<int> order(P.Weights.size());
  std::iota(order.begin(), order.end(), 0);
  std::ranges::stable_sort(order,
                           [&](int a, int b) { return P.Values[a] * P.Weights[b] > P.Values[b] * P.Weights[a]; });
  std::map<Int64, TAnswer> best{{0, {}}};  // value negated, counts from the last item back, so that the least is best
  for (const int item : order) {
    const int limit = P.Limits.empty() ? kMaxInt : P.Limits[item];
    const auto former = std::exchange(best, {});
    for (const auto& [weight, choice] : former) {
      for (int count = 0; count <= limit && weight + count * P.Weights[item] <= P.Capacity; ++count) {
        TAnswer next{choice.first - count * P.Values[item], {count}};
        next.second.insert(next.second.end(), choice.second.begin(), choice.second.end());
        TAnswer& known = best.emplace(weight + count * P.Weights[item], next).first->second;
        known = std::min(known, next);
      }
    }
  }
  const auto& [value, back] = std::ranges::min_element(best, {}, [](const auto& Entry) {
                                const auto& [loss, counts] = Entry.second;
                                return std::pair(loss, counts.begin() - std::ranges::find_if(counts, std::identity()));
                              })->second;
  TAnswer answer{-value, std::vector<int>(order.size())};
  for (int i = 0; i < Size(order); ++i) answer.second[order[i]] = back[Size(order) - 1 - i];
  return answer;
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

// Few pieces, and so many that the capacity plays no part in the unbounded search, unless its answer is heavier; wide
// values, and rooms on both sides of where the bounded search changes from states to cells.
TEST(Knapsack, TheAnswerIsTheStatedOneOfAllBestAnswers) {
  ForEachSeed(1800, [](unsigned seed) {
    const TRandomScope scope(seed);
    const Int64 scale = Random(2) == 0 ? 1 : 1'000'000'000'000;
    TProblem p;
    if (seed % 60 == 0) {
      p = RandomProblem(From(5, 12), From(20, 400), 12, scale);
      p.Capacity = From(500, 2500);
    } else if (seed % 5 != 0) {
      p = RandomProblem(From(1, 6), seed % 3 == 0 ? 60 : 9, 5, scale);
      p.Capacity = From(1, 12 * p.Weights[0] + 20);
    } else if (seed % 3 != 0) {
      p = RandomProblem(From(1, 4), 15, 0, scale);
      p.Capacity = From(1, 70);
    } else {
      p = RandomProblem(3, 11, 0, scale);
      const int more = Random(2) == 0 ? 3 : 400;
      for (int& weight : p.Weights) weight += more;
      for (Int64& value : p.Values) value += more == 400 ? 400 * scale : 0;
      p.Capacity = 32 * *std::ranges::max_element(p.Weights) + From(0, 15);
    }
    EXPECT_EQ(Solve(p), Stated(p));
  });
}

TEST(Knapsack, ItemsThatCannotBeUsedCountZeroAndAllThatFitsIsTaken) {
  constexpr Int64 kMost = std::numeric_limits<Int64>::max();
  // Value 0, negative value, negative weight, too heavy, limits 0 and below.
  const std::vector weights{1, 1, -1, 11, 5, 5, 5};
  const std::vector<Int64> values{0, -3, 9, 99, 8, 8, 8};
  const std::pair<TProblem, TAnswer> cases[] = {
      {{weights, values, {9, 9, 9, 9, 0, -1, 1}, 10}, {8, {0, 0, 0, 0, 0, 0, 1}}},
      {{weights, values, {}, 10}, {16, {0, 0, 0, 0, 2, 0, 0}}},
      {{{0, 3}, {5, 4}, {2, 9}, 3}, {14, {2, 1}}},  // weightless: up to its limit, and left out without one
      {{{0, 3}, {5, 4}, {}, 3}, {4, {0, 1}}},
      {{{0, 3}, {5, 4}, {2, 9}, 0}, {0, {0, 0}}},
      {{{0, 3}, {5, 4}, {2, 9}, -kMost}, {0, {0, 0}}},
      {{{0, 3}, {5, 4}, {}, -kMost}, {0, {0, 0}}},
      {{{7, 5, 9}, {1, 9, 4}, {20, kMaxInt, 3}, kMost}, {20 + Int64{9} * kMaxInt + 12, {20, kMaxInt, 3}}}};
  for (const auto& [problem, answer] : cases) EXPECT_EQ(Solve(problem), answer);
}

TEST(Knapsack, RaisesBeforeSumsOverflowAndLeavesCountsAlone) {
  constexpr Int64 half = Int64{1} << 60;
  EXPECT_THROW(Solve({{1, 1}, {half, half}, {1, 1}, 2}), TRangeError);
  EXPECT_EQ(Solve({{1, 1}, {half - 1, half - 1}, {1, 1}, 2}).first, 2 * (half - 1));
  EXPECT_THROW(Solve({{1, 2}, {1}, {}, 5}), TArgumentError);
  EXPECT_THROW(Solve({{1}, {1}, {1, 1}, 5}), TArgumentError);
  std::vector<int> counts{42};
  EXPECT_THROW(TKnapsackSolver::SolveInfiniteKnapsack(std::vector{1}, std::vector{1}, Int64{kMaxInt} + 1, counts),
               TRangeError);
  EXPECT_EQ(counts, std::vector{42});
}

TEST(Knapsack, CountsMayReplaceAListThatWasPassedIn) {
  std::vector<int> list{2, 1};
  EXPECT_EQ(TKnapsackSolver::SolveMultiKnapsack(list, list, TItemLimits(list), 3, list), 3);
  EXPECT_EQ(list, (std::vector{1, 1}));
}

}  // namespace
}  // namespace platenest

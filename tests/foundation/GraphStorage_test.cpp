#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platenest/foundation/CodeMap.h"
#include "platenest/foundation/InlineVector.h"

namespace platenest {
namespace {

using TList = TInlineVector<int, 4>;
static_assert(sizeof(TList) == 24, "hundreds of thousands of these stand in one graph");

TEST(InlineVector, AgreesWithAVectorThroughRandomChanges) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    TList list;
    std::vector<int> model;
    const int changes = round % 25;
    for (int i = 0; i < changes; ++i) {
      if (random() % 3 == 0 && !model.empty()) {
        const auto place = random() % model.size();
        list.erase(list.begin() + place);
        model.erase(model.begin() + static_cast<std::ptrdiff_t>(place));
      } else {
        list.push_back(i);
        model.push_back(i);
      }
      ASSERT_TRUE(std::equal(list.begin(), list.end(), model.begin(), model.end()));
    }
  }
}

TEST(InlineVector, CopiesDeepAndMovesBetweenInsideAndHeap) {
  for (const TList& from : {TList{1, 2}, TList{1, 2, 3, 4, 5, 6}})
    for (const TList& to : {TList{1, 2}, TList{1, 2, 3, 4, 5, 6}}) {
      TList copy(to);
      copy = from;
      EXPECT_EQ(copy, from);
      copy.back() = 99;
      EXPECT_NE(copy, from);
      TList emptied(from);
      TList moved(to);
      moved = std::move(emptied);
      EXPECT_TRUE(moved == from && emptied.empty());
    }
}

TEST(CodeMap, AgreesWithAHashMapOverManyGrowths) {
  std::mt19937_64 random(3);
  TCodeMap map;
  std::unordered_map<Int64, int> model;
  EXPECT_EQ(map.Find(0), TCodeMap::kNone);
  for (int i = 0; i < 20000; ++i) {
    // Neighbouring cells of a few rows, as a drawing gives them, and codes from the whole range.
    const Int64 code = i % 2 == 0 ? 100000007 * static_cast<Int64>(random() % 50) + static_cast<Int64>(random() % 300)
                                  : static_cast<Int64>(random());
    if (model.emplace(code, i).second) map.Add(code, i);
  }
  for (const Int64 code : {Int64{-1}, std::numeric_limits<Int64>::min(), std::numeric_limits<Int64>::max()})
    if (model.emplace(code, 1).second) map.Add(code, 1);
  EXPECT_EQ(map.Count(), Size(model));
  for (const auto& [code, index] : model) {
    ASSERT_EQ(map.Find(code), index);
    const auto neighbour = model.find(code ^ 1);
    ASSERT_EQ(map.Find(code ^ 1), neighbour == model.end() ? TCodeMap::kNone : neighbour->second);
  }
}

TEST(CodeMap, KeepsEntriesOfOneCodeInOrderThroughGrowth) {
  TCodeMap map;
  for (int i = 0; i < 300; ++i) map.Add(i % 3, i);
  EXPECT_EQ(map.Find(1), 1);
  EXPECT_EQ(map.Find(1, [](int index) { return index >= 200; }), 202);
  EXPECT_EQ(map.Find(1, [](int index) { return index >= 300; }), TCodeMap::kNone);
}

TEST(CodeMap, RestartsEmptyWithRoom) {
  TCodeMap map;
  for (int i = 0; i < 300; ++i) map.Add(i, i);
  for (const int room : {0, 5, 1000}) {
    map.Restart(room);
    EXPECT_EQ(map.Count(), 0);
    EXPECT_EQ(map.Find(7), TCodeMap::kNone);
    for (int i = 0; i < 400; ++i) map.Add(i, 2 * i);
    EXPECT_EQ(map.Find(7), 14);
    EXPECT_EQ(map.Find(399), 798);
  }
}

}  // namespace
}  // namespace platenest

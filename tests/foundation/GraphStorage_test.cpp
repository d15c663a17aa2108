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

// Among the changes are copies and moves to and from lists of other lengths.
TEST(InlineVector, AgreesWithAVectorThroughRandomChanges) {
  std::mt19937 random(7);
  std::pair<TList, std::vector<int>> lists[3];
  for (int i = 0; i < 20000; ++i) {
    auto& [list, model] = lists[random() % 3];
    auto& [other, otherModel] = lists[random() % 3];
    const auto change = random() % 24;
    const auto place = static_cast<std::ptrdiff_t>(model.empty() ? 0 : random() % model.size());
    if (change == 0) {
      list = other;
      model = otherModel;
    } else if (change == 1 && &list != &other) {
      list = std::move(other);
      model = std::exchange(otherModel, {});
      ASSERT_TRUE(other.empty());
    } else if (change < 12 && !model.empty()) {
      list.erase(list.begin() + place);
      model.erase(model.begin() + place);
    } else {
      list.push_back(i);
      model.push_back(i);
    }
    for (const auto& [l, m] : lists) ASSERT_TRUE(std::equal(l.begin(), l.end(), m.begin(), m.end()));
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

TEST(CodeMap, KeepsEntriesOfOneCodeInOrderThroughGrowthAndRestartsEmpty) {
  TCodeMap map;
  for (const int room : {0, 5, 1000}) {
    map.Restart(room);
    EXPECT_TRUE(map.Count() == 0 && map.Find(1) == TCodeMap::kNone);
    for (int i = 0; i < 300; ++i) map.Add(i % 3, i);
    EXPECT_EQ(map.Find(1), 1);
    EXPECT_EQ(map.Find(1, [](int index) { return index >= 200; }), 202);
    EXPECT_EQ(map.Find(1, [](int index) { return index >= 300; }), TCodeMap::kNone);
  }
}

}  // namespace
}  // namespace platenest

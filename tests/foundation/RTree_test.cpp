#include "platenest/foundation/RTree.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <random>

namespace platenest {
namespace {

using testing::ElementsAre;
using TTree = TRTree<int>;

TVRect2D BoxAt(double X, double Y, double Width = 1, double Height = 1) {
  return TVRect2D::FromSize(Width, Height).Translate({X, Y});
}

std::vector<int> DataBelow(const TRTreeNode<int>* Node) {
  std::vector<int> result;
  Node->Search(Node->Box(), result, 0);
  return result;
}

//   2   3      The halves by left and by bottom cover the same area, and the box 4 in the middle enlarges both halves
//     4        alike: the order by bottom wins, and the old node takes the box. Splitting after the box came would
//   0   1      have put it beside 2 and 3.
TEST(RTree, AFullRootSplitsBeforeTheNewBoxComes) {
  TTree tree(4);
  for (int i = 0; i < 4; ++i) tree.Insert(i, BoxAt(10 * (i % 2), 10 * (i / 2)));
  EXPECT_TRUE(tree.Root()->IsLeaf());
  tree.Insert(4, BoxAt(5, 5));
  ASSERT_EQ(tree.Root()->ChildCount(), 2);
  EXPECT_THAT(DataBelow(tree.Root()->Child(0)), ElementsAre(0, 1, 4));
  EXPECT_THAT(DataBelow(tree.Root()->Child(1)), ElementsAre(2, 3));
  tree.Insert(5, BoxAt(5, 7.5));
  EXPECT_THAT(DataBelow(tree.Root()->Child(0)), ElementsAre(0, 1, 4, 5)) << "first of two equal growths";
  tree.Insert(6, BoxAt(5, 9.5));
  EXPECT_THAT(DataBelow(tree.Root()->Child(1)), ElementsAre(2, 3, 6)) << "least growth";
}

TEST(RTree, RemovalKeepsTheBoxesAndEndsWithoutARoot) {
  TTree tree(4);
  for (int i = 0; i < 30; ++i) tree.Insert(i, BoxAt(2 * i, 0));
  for (int i = 29; i > 0; --i) tree.Remove(i);
  EXPECT_EQ(tree.Root()->Box().Right, 59) << "boxes above a removed one do not shrink";
  tree.Remove(0);
  EXPECT_EQ(tree.Root(), nullptr);
  EXPECT_FALSE(tree.MayIntersect(BoxAt(0, 0)));
  tree.Insert(5, BoxAt(7, 7));
  EXPECT_EQ(tree.Root()->Box().Left, 7) << "a new root starts with a new box";
}

TEST(RTree, ListsKeysInTheOrderOfInsertion) {
  TTree tree(3);
  for (const int i : {40, 7, 1000, -3, 12}) tree.Insert(i, BoxAt(i, i));
  tree.Remove(40);
  tree.Insert(1000, BoxAt(5, 5));
  EXPECT_THAT(tree.GetAllData(), ElementsAre(7, -3, 12, 1000)) << "a key that moves comes last";
}

TEST(RTree, RejectsWhatIsNoBox) {
  EXPECT_THROW(TTree(1), TArgumentError);
  TTree tree(4);
  tree.Insert(1, BoxAt(0, 0));
  EXPECT_THROW(tree.Insert(1, TVRect2D::InvalidRect), TArgumentError);
  EXPECT_EQ(tree.Search(BoxAt(0, 0), 0).size(), 1U) << "the key keeps its former box";
  EXPECT_THROW(tree.Search(BoxAt(std::nan(""), 0), 0), TArgumentError);
}

void ExpectLikeALinearSearch(int MaxChildCount) {
  std::mt19937 random(1000 + MaxChildCount);
  const auto number = [&](int Below) { return static_cast<int>(random() % Below); };
  TTree tree(MaxChildCount);
  std::map<int, TVRect2D> model;
  for (int step = 0; step < 3000; ++step) {
    const int key = number(400);
    const bool growing = step / 500 % 2 == 0;
    if (number(10) < (growing ? 7 : 2)) {
      model.insert_or_assign(key, BoxAt(number(100), number(100), number(12), number(12)));
      tree.Insert(key, model.at(key));
    } else {
      model.erase(key);
      tree.Remove(key);
    }
    ASSERT_EQ(tree.Count(), Size(model));
    if (step % 50 != 0 || model.empty()) continue;
    for (const TTreeNode<int>* node : tree.Root()->PreorderTraversal())
      ASSERT_LE(Size(node->ChildNodes()), MaxChildCount) << "step " << step;
    for (int query = 0; query < 10; ++query) {
      const TVRect2D region = BoxAt(number(110) + number(3) * 0.9e-6, number(110), number(20), number(20));
      std::vector<int> expected{-1};
      std::vector<int> found{-1};
      for (const auto& [data, box] : model)
        if (box.RelationWithRectangle(region, 1e-6) != rrDisjoint) expected.push_back(data);
      tree.Search(region, found, 1e-6);
      ASSERT_THAT(found, testing::UnorderedElementsAreArray(expected)) << "contacts count, step " << step;
      ASSERT_EQ(tree.MayIntersect(region), expected.size() > 1);
    }
  }
}

TEST(RTree, FindsWhatALinearSearchFinds) {
  for (const int maxChildCount : {3, 4, 8, 15}) ExpectLikeALinearSearch(maxChildCount);
}

}  // namespace
}  // namespace platenest

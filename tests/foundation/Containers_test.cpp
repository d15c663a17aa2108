#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

#include "platenest/foundation/Collection.h"
#include "platenest/foundation/MinHeap.h"
#include "platenest/foundation/Nullable.h"
#include "platenest/foundation/TreeNode.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

template <class T>
std::vector<T> ArrayOf(const TMinHeap<T>& Heap) {
  std::vector<T> result;
  for (const THeapNode<T>& node : Heap.Datas()) result.push_back(node.Data);
  return result;
}

// Numbers with equal tens are equal, so that the places of ties can be seen.
int CompareTens(const int& A, const int& B) {
  return A / 10 - B / 10;
}

template <class Action>
std::string ErrorOf(Action Act) {
  try {
    Act();
  } catch (const TNestError& error) {
    return error.Text();
  }
  return "no error";
}

TEST(MinHeap, KeepsTheToldArrayThroughAddAndPop) {
  TMinHeap<int> heap;
  for (const int key : {5, 3, 8, 1, 9, 2, 7}) heap.Add(key, key);
  EXPECT_THAT(ArrayOf(heap), ElementsAre(1, 3, 2, 5, 9, 8, 7));
  EXPECT_EQ(heap.Pop(), 1);
  EXPECT_THAT(ArrayOf(heap), ElementsAre(2, 3, 7, 5, 9, 8));
}

TEST(MinHeap, HeapifyRaisesOncePerIndexFromTheLast) {
  EXPECT_THAT(ArrayOf(TMinHeap<int>({9, 8, 7, 6, 5, 4, 3, 2, 1}, Sign<int>)), ElementsAre(1, 2, 4, 3, 8, 9, 7, 5, 6));
  EXPECT_THAT(ArrayOf(TMinHeap<int>({30, 20, 21, 10, 11, 12, 13}, CompareTens)),
              ElementsAre(13, 11, 12, 10, 20, 30, 21));
}

TEST(MinHeap, TiesGoLeftAndNeverMoveAnEqualParent) {
  TMinHeap<int> heap(CompareTens);
  heap.AddRange({10, 20, 21, 30, 31});
  EXPECT_EQ(heap.Pop(), 10);
  EXPECT_THAT(ArrayOf(heap), ElementsAre(20, 31, 21, 30)) << "the left one of two equal children rises";
  heap.Clear();
  heap.AddRange({10, 20, 21, 22, 23});
  heap.Pop();
  EXPECT_THAT(ArrayOf(heap), ElementsAre(23, 20, 21, 22)) << "equal children do not displace their parent";
}

TEST(MinHeap, OrdersByTheComparerOrByTheKeysNeverByBoth) {
  TMinHeap<int> byData(Sign<int>);
  byData.Add(2, -5);
  byData.Add(1, 7);
  EXPECT_EQ(byData.Top(), 1);
  EXPECT_EQ(byData.TopKey(), 7);
  TMinHeap<int> byKey;
  byKey.Add(1, 7);
  byKey.Add(2, -5);
  EXPECT_EQ(byKey.TopNode().Data, 2);
  EXPECT_EQ(byKey.Compare({1, 1e-9}, {2, 0}), 1) << "keys are compared without tolerance";
}

TEST(MinHeap, FailuresSpeakTheirTextAndChangeNothing) {
  TMinHeap<int> heap;
  EXPECT_EQ(ErrorOf([&] { heap.Top(); }), "[Error] TMinHeap.Top: 堆中没有元素");
  EXPECT_EQ(ErrorOf([&] { heap.TopKey(); }), "[Error] TMinHeap.Top: 堆中没有元素");
  EXPECT_EQ(ErrorOf([&] { heap.TopNode(); }), "[Error] TMinHeap.TopNode: 堆中没有元素");
  EXPECT_EQ(ErrorOf([&] { heap.Pop(); }), "[Error] TMinHeap.Pop: 堆中没有元素");
  heap.Add(4, 4);
  EXPECT_EQ(ErrorOf([&] { heap.AddRange({1, 2}); }), "[Error] TMinHeap.AddRange: 只有通过函数比较才可调用本方法");
  EXPECT_THAT(ArrayOf(heap), ElementsAre(4));
  EXPECT_THROW(TMinHeap<int>({1, 2}, nullptr), TArgumentError);
}

TEST(MinHeap, LosesNothingWhenTheComparerThrows) {
  int allowed = 1000;
  TMinHeap<int> heap([&](const int& A, const int& B) {
    if (--allowed < 0) throw TNestError("stop");
    return Sign(A, B);
  });
  for (int i = 0; i < 20; ++i) heap.Add(i, 0);
  allowed = 3;
  EXPECT_THROW(heap.Pop(), TNestError);
  EXPECT_THAT(ArrayOf(heap), testing::SizeIs(20));
  EXPECT_THAT(ArrayOf(heap), testing::Contains(0));
}

TEST(MinHeap, DeliversMoveOnlyItemsInOrder) {
  std::mt19937 random(7);
  TMinHeap<std::unique_ptr<int>> heap;
  for (int i = 0; i < 300; ++i) {
    const int key = static_cast<int>(random() % 50);
    heap.Add(std::make_unique<int>(key), key);
    if (i % 3 == 2) heap.Pop();
  }
  std::vector<int> keys;
  while (heap.Count() > 0) keys.push_back(*heap.Pop());
  EXPECT_EQ(keys.size(), 200U);
  EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
}

TEST(Collection, TellsWhetherAnElementWasNew) {
  TCollection<int> set{1, 2};
  EXPECT_TRUE(set.Add(3));
  EXPECT_FALSE(set.Add(3));
  set.Remove(7);
  EXPECT_EQ(set.Count(), 3);
}

TEST(Collection, AlgebraChangesTheReceiverOrReturnsANewSet) {
  using TSet = TCollection<int>;
  struct TCase {
    void (TSet::*InPlace)(const TSet&);
    TSet (TSet::*ToNew)(const TSet&) const;
    std::vector<int> Expected, ExpectedWithItself;
  };
  const TCase cases[] = {
      {&TSet::Union, &TSet::UnionTo, {1, 2, 3, 4}, {1, 2, 3}},
      {&TSet::Intersection, &TSet::IntersectionTo, {3}, {1, 2, 3}},
      {&TSet::Difference, &TSet::DifferenceTo, {1, 2}, {}},
      {&TSet::ExclusiveOr, &TSet::ExclusiveOrTo, {1, 2, 4}, {}},
  };
  const TSet b{3, 4};
  for (const TCase& c : cases) {
    TSet a{1, 2, 3};
    EXPECT_THAT((a.*c.ToNew)(b), testing::UnorderedElementsAreArray(c.Expected));
    EXPECT_THAT((a.*c.ToNew)(a), testing::UnorderedElementsAreArray(c.ExpectedWithItself));
    EXPECT_THAT(a, UnorderedElementsAre(1, 2, 3)) << "operand of the form that returns a new set";
    (a.*c.InPlace)(b);
    EXPECT_THAT(a, testing::UnorderedElementsAreArray(c.Expected));
    EXPECT_THAT(b, UnorderedElementsAre(3, 4));
    TSet self{1, 2, 3};
    (self.*c.InPlace)(self);
    EXPECT_THAT(self, testing::UnorderedElementsAreArray(c.ExpectedWithItself));
  }
}

TEST(Collection, WalksInTheOrderOfArrivalAndComparesWithoutIt) {
  TCollection<int> set{30, 10, 20};
  set.Remove(30);
  set.AddRange(std::vector<int>{5, 30});
  EXPECT_THAT(set, ElementsAre(10, 20, 5, 30));
  const TCollection<int> other{5, 10, 20, 30};
  EXPECT_TRUE(set.Equals(&other));
  set.Remove(*set.begin());
  EXPECT_FALSE(set.Equals(&other));
  set.Add(11);
  EXPECT_FALSE(set.Equals(&other)) << "equal counts are not enough";
  EXPECT_FALSE(set.Equals(nullptr));
}

TEST(Collection, CopiesAreIndependent) {
  TCollection<int> source{1, 2};
  TCollection<int> clone = source.Clone();
  source.Remove(1);
  source.Add(9);
  EXPECT_THAT(clone, ElementsAre(1, 2));
  clone.CopyFrom(source, false);
  EXPECT_THAT(clone, ElementsAre(1, 2, 9));
  clone.CopyFrom(source, true);
  clone.CopyFrom(clone, true);
  EXPECT_THAT(clone, ElementsAre(2, 9));
  clone = TCollection<int>(std::move(source));
  clone.Remove(2);
  EXPECT_THAT(clone, ElementsAre(9));
}

TEST(Nullable, ShowsTheValueOnlyUnderItsFlag) {
  EXPECT_EQ(TNullable<int>(false).GetValueOrDefault(), 0);
  EXPECT_EQ(TNullable<int>(false, 5).GetValueOrDefault(), 0);
  EXPECT_EQ(TNullable<int>(false, 5).GetValueOrDefault(8), 8);
  TNullable<int> value(true, 5);
  EXPECT_EQ(value.GetValueOrDefault(8), 5);
  value.Clear();
  EXPECT_TRUE(value.IsNull());
  EXPECT_EQ(value.Value, 0);
}

struct TLetter : TTreeNode<char> {
  TLetter(char Letter, int& Alive) : TTreeNode(Letter), FAlive(Alive) { ++FAlive; }
  ~TLetter() override { --FAlive; }
  int& FAlive;
};

std::string Letters(const std::vector<TTreeNode<char>*>& Nodes) {
  std::string result;
  for (const TTreeNode<char>* node : Nodes) result += node->Data();
  return result;
}

//        a
//      / | \          .
//     b  c  d
//    / \    |
//   e   f   g
class TreeNode : public testing::Test {
 protected:
  TreeNode() {
    for (const char letter : {'b', 'c', 'd'}) Add(Root, letter);
    Add(Child(0), 'e');
    Add(Child(0), 'f');
    Add(Child(2), 'g');
  }
  void Add(TTreeNode<char>& Parent, char Letter) { Parent.AddChildNode(new TLetter(Letter, Alive)); }
  TTreeNode<char>& Child(int Index) { return *Root.ChildNodes()[Index]; }

  int Alive = 0;
  TLetter Root{'a', Alive};
};

TEST_F(TreeNode, TraversalsListEveryNodeInTheirOrder) {
  EXPECT_EQ(Letters(Root.HierarchicalTraversal()), "abcdefg");
  EXPECT_EQ(Letters(Root.PreorderTraversal()), "abefcdg");
  EXPECT_EQ(Letters(Root.PostOrderTraversal()), "efbcgda");
  EXPECT_EQ(Letters(Child(0).HierarchicalTraversal()), "bef");
  Root.ClearFreeChildNodes(true);
  EXPECT_EQ(Alive, 1);
  EXPECT_TRUE(Root.IsLeaf());
}

TEST_F(TreeNode, AddingSetsTheDepthOfTheChildAlone) {
  EXPECT_EQ(Root.Depth(), -1);
  EXPECT_EQ(Child(0).Depth(), 0);
  TLetter top('t', Alive);
  TLetter above('u', Alive);
  above.AddChildNode(&top);
  top.AddChildNode(&Root);
  EXPECT_EQ(Root.Depth(), 1);
  EXPECT_EQ(Child(0).Depth(), 0) << "what hangs below keeps its depth";
  EXPECT_FALSE(Root.IsRoot());
  Root.ClearFreeChildNodes(true);
}

TEST_F(TreeNode, ClearingWithoutRecursionLeavesTheGrandchildrenAlive) {
  std::vector<std::unique_ptr<TTreeNode<char>>> grandchildren;
  for (const int i : {0, 2}) {
    for (TTreeNode<char>* node : Child(i).ChildNodes()) grandchildren.emplace_back(node);
  }
  Root.ClearFreeChildNodes(false);
  EXPECT_EQ(Alive, 4);
  EXPECT_TRUE(grandchildren[0]->IsRoot());
}

}  // namespace
}  // namespace platenest

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>

#include "platenest/foundation/Collection.h"
#include "platenest/foundation/MinHeap.h"
#include "platenest/foundation/TreeNode.h"

namespace platenest {
namespace {

using testing::ElementsAre;

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

TEST(MinHeap, FailuresSpeakTheirTextAndChangeNothing) {
  TMinHeap<int> heap;
  const auto raises = [](const char* Text) {
    return testing::ThrowsMessage<TNestError>(std::string("[Error] TMinHeap.") + Text);
  };
  EXPECT_THAT([&] { heap.TopKey(); }, raises("Top: 堆中没有元素"));
  EXPECT_THAT([&] { heap.TopNode(); }, raises("TopNode: 堆中没有元素"));
  EXPECT_THAT([&] { heap.Pop(); }, raises("Pop: 堆中没有元素"));
  heap.Add(4, 1e-9);
  EXPECT_THAT([&] { heap.AddRange({1, 2}); }, raises("AddRange: 只有通过函数比较才可调用本方法"));
  heap.Add(9, 0);
  EXPECT_THAT(ArrayOf(heap), ElementsAre(9, 4)) << "keys alone, without tolerance";
}

TEST(MinHeap, DeliversMoveOnlyItemsInOrder) {
  TMinHeap<std::unique_ptr<int>> heap;
  for (int i = 0; i < 300; ++i) heap.Add(std::make_unique<int>(i * 37 % 50), i * 37 % 50);
  for (int former = 0; heap.Count() > 0;) {
    const int key = *heap.Pop();
    EXPECT_GE(key, former);
    former = key;
  }
}

TEST(Collection, AlgebraChangesTheReceiverOrReturnsANewSet) {
  using TSet = TCollection<int>;
  const struct {
    void (TSet::*InPlace)(const TSet&);
    TSet (TSet::*ToNew)(const TSet&) const;
    TSet Expected, ExpectedWithItself;
  } cases[] = {
      {&TSet::Union, &TSet::UnionTo, {1, 2, 3, 4}, {1, 2, 3}},
      {&TSet::Intersection, &TSet::IntersectionTo, {3}, {1, 2, 3}},
      {&TSet::Difference, &TSet::DifferenceTo, {1, 2}, {}},
      {&TSet::ExclusiveOr, &TSet::ExclusiveOrTo, {1, 2, 4}, {}},
  };
  const TSet b{3, 4};
  for (const auto& c : cases) {
    TSet a{1, 2, 3};
    TSet self = a.Clone();
    EXPECT_TRUE((a.*c.ToNew)(b).Equals(&c.Expected));
    EXPECT_TRUE(a.Equals(&self)) << "operand of the form that returns a new set";
    (a.*c.InPlace)(b);
    EXPECT_TRUE(a.Equals(&c.Expected));
    EXPECT_TRUE((self.*c.ToNew)(self).Equals(&c.ExpectedWithItself));
    (self.*c.InPlace)(self);
    EXPECT_TRUE(self.Equals(&c.ExpectedWithItself));
  }
}

TEST(Collection, WalksInTheOrderOfArrivalAndComparesWithoutIt) {
  TCollection<int> set{30, 10, 20};
  EXPECT_FALSE(set.Add(20));
  set.Remove(7);
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
TEST(TreeNode, TraversalsListEveryNodeAndClearingLetsTheGrandchildrenLive) {
  using TNode = TTreeNode<char>;
  TNode root('a');
  for (const char letter : {'b', 'c', 'd'}) root.AddChildNode(new TNode(letter));
  const auto child = [&root](int Index) { return root.ChildNodes()[Index]; };
  for (const auto& [parent, letter] : {std::pair{0, 'e'}, {0, 'f'}, {2, 'g'}})
    child(parent)->AddChildNode(new TNode(letter));
  EXPECT_EQ(Letters(root.HierarchicalTraversal()), "abcdefg");
  EXPECT_EQ(Letters(root.PreorderTraversal()), "abefcdg");
  EXPECT_EQ(Letters(root.PostOrderTraversal()), "efbcgda");
  TNode above('u');
  above.AddChildNode(&root);
  EXPECT_EQ(root.Depth(), above.Depth() + 1);
  EXPECT_EQ(child(0)->Depth(), 0) << "what hangs below keeps its depth";
  const std::unique_ptr<TNode> e(child(0)->ChildNodes()[0]), f(child(0)->ChildNodes()[1]);
  child(2)->ClearFreeChildNodes(true);
  root.ClearFreeChildNodes(false);
  EXPECT_TRUE(e->IsRoot() && f->IsRoot());
}

}  // namespace
}  // namespace platenest

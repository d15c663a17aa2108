#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platenest/foundation/Collection.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rect2D.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/TreeNode.h"
#include "platenest/foundation/Types.h"

namespace platenest {

template <class T>
class TRTreeNode;

// Owns the nodes of one R-tree, while they refer to each other by plain pointers.
template <class T>
class TRTreeNodeStore {
 public:
  template <class... Args>
  TRTreeNode<T>* Create(Args&&... Arguments) {
    FNodes.push_back(std::make_unique<TRTreeNode<T>>(*this, Size(FNodes), std::forward<Args>(Arguments)...));
    return FNodes.back().get();
  }
  void Free(const TRTreeNode<T>* Node) {
    const std::size_t place = Node->Place();
    FNodes.back()->SetPlace(Node->Place());
    FNodes[place].swap(FNodes.back());
    FNodes.pop_back();
  }
  void Clear() { FNodes.clear(); }

 private:
  std::vector<std::unique_ptr<TRTreeNode<T>>> FNodes;
};

// Node of an R-tree: a data node has no children and holds T, a leaf has data nodes as children, an inner node has
// leaves or inner nodes. What has no children counts as a data node, a fresh node included, until its first child
// comes. The box of a node covers all below it, and may be larger after a removal.
template <class T>
class TRTreeNode : public TTreeNode<T> {
 public:
  using TStore = TRTreeNodeStore<T>;

  // The store that owns the node, and the node's place in it.
  TRTreeNode(TStore& Store, int Place) : FStore(Store), FPlace(Place) {}
  TRTreeNode(TStore& Store, int Place, T Data, const TVRect2D& Box)
      : TTreeNode<T>(std::move(Data)), FBox(Box), FStore(Store), FPlace(Place) {}
  void ClearFreeChildNodes(bool DoesRecursive) = delete;  // the store frees

  const TVRect2D& Box() const { return FBox; }
  int ChildCount() const { return Size(this->ChildNodes()); }
  TRTreeNode* Child(int Index) const { return static_cast<TRTreeNode*>(this->ChildNodes()[Index]); }
  TRTreeNode* ParentNode() const { return static_cast<TRTreeNode*>(this->Parent()); }
  int Place() const { return FPlace; }
  void SetPlace(int Place) { FPlace = Place; }

  bool IsDataNode() const { return this->ChildNodes().empty(); }
  bool IsLeaf() const override { return !IsDataNode() && Child(0)->IsDataNode(); }
  // Also expands the boxes of this node and of all above it.
  void AddChildNode(TTreeNode<T>* ChildNode) override;

  // Appends the data below this node whose boxes have no gap above Tol to the region, in the order of the children.
  void Search(const TVRect2D& SearchRegion, std::vector<T>& Result, double Tol) const;
  bool SearchFindsAny(const TVRect2D& SearchRegion, double Tol) const;

  // The leaf that grows least on the way down, first of equals. Never on a data node: TAssertionError.
  TRTreeNode* ChooseInsertLeaf(const TVRect2D& Box);
  // Moves half of the children, at least two, to a new sibling; a root gets a new parent for the two. The result is
  // the one of the two that AddBox enlarges less, this node on a tie or for an AddBox that is not valid.
  TRTreeNode* Split(const TVRect2D& AddBox);
  // A node without children leaves its parent and goes to RemovedNodes, which tries the parent in turn.
  void RemoveFromParentIfEmpty(std::vector<TRTreeNode*>& RemovedNodes);
  // The box becomes the union of the children's boxes.
  void RefreshBox();

 private:
  bool IsFarFrom(const TVRect2D& Region, double Tol) const {
    return FBox.RelationWithRectangle(Region, Tol) == rrDisjoint;
  }
  double Growth(const TVRect2D& Box) const { return FBox.Expand(Box).Area() - FBox.Area(); }
  std::vector<int> CalcGroup() const;
  std::vector<int> OrderBy(double TVRect2D::*Bound) const;
  double AreaOfHalves(const std::vector<int>& Order) const;

  TVRect2D FBox = TVRect2D::InvalidRect;
  TStore& FStore;
  int FPlace;
};

// Index over axis-parallel boxes (drawing units), each under a key of type T: hashable, copyable, and unique in the
// tree. Answers do not depend on hashes: searches report in the order of the tree, lists of keys in that of insertion.
// Insert costs O(log n) amortised, as does a search with few hits in boxes that overlap little. Guttman (1984), with a
// split of its own. One thread at a time; any number of them may search a tree that nobody changes.
template <class T>
class TRTree {
 public:
  using TNode = TRTreeNode<T>;

  // MaxChildCount at least 2, else TArgumentError. With 2 the tree degenerates to a list, use 4 to 16.
  explicit TRTree(int MaxChildCount);
  TRTree(const TRTree&) = delete;
  TRTree& operator=(const TRTree&) = delete;

  // A key that is present moves to the new box, as if it had been removed first. TArgumentError unless the box is
  // valid and finite; the tree is unchanged then.
  void Insert(T Data, const TVRect2D& Box);
  // No effect for an unknown key. Boxes above the removed one do not shrink: later searches may look into empty space,
  // but miss nothing.
  void Remove(const T& Data);
  void Clear();

  int Count() const { return Size(FDataNodeDic); }
  bool Contains(const T& Data) const { return FDataNodeDic.contains(Data); }
  std::vector<T> GetAllData() const { return {FKeys.begin(), FKeys.end()}; }
  // Not random: the first inserted of the keys present; T() for an empty tree.
  T GetRandomData() const { return FKeys.Count() > 0 ? *FKeys.begin() : T(); }

  // The data whose boxes are not disjoint from the region: boxes that touch it, or miss it by up to Tol, are found.
  // TArgumentError if a number is NaN. The second form appends to ResultList.
  std::vector<T> Search(const TVRect2D& SearchRegion, double Tol) const;
  void Search(const TVRect2D& SearchRegion, std::vector<T>& ResultList, double Tol) const;
  // Whether Search with the default tolerance finds anything; stops at the first hit.
  bool MayIntersect(const TVRect2D& SearchRegion) const;

  int MinChildCount() const { return FMinChildCount; }
  int MaxChildCount() const { return FMaxChildCount; }
  // nullptr for an empty tree. All nodes belong to the tree.
  TNode* Root() const { return FRoot; }
  // Splits a node of this tree that has at least two children, see TRTreeNode.
  TNode* SplitNode(TNode* Node, const TVRect2D& Box);

 private:
  TNode* MakeRoom(TNode* Leaf, const TVRect2D& Box);
  static void CheckQuery(const TVRect2D& Region, double Tol);

  TRTreeNodeStore<T> FStore;
  TNode* FRoot = nullptr;
  int FMinChildCount;
  int FMaxChildCount;
  std::unordered_map<T, TNode*> FDataNodeDic;
  TCollection<T> FKeys;
};

template <class T>
void TRTreeNode<T>::AddChildNode(TTreeNode<T>* ChildNode) {
  TTreeNode<T>::AddChildNode(ChildNode);
  const TRTreeNode* below = static_cast<TRTreeNode*>(ChildNode);
  for (TRTreeNode* node = this; node != nullptr; below = node, node = node->ParentNode())
    node->FBox.ExpandInPlace(below->FBox);
}

template <class T>
void TRTreeNode<T>::Search(const TVRect2D& SearchRegion, std::vector<T>& Result, double Tol) const {
  if (IsFarFrom(SearchRegion, Tol)) return;
  if (IsDataNode()) return Result.push_back(this->Data());
  for (int i = 0; i < ChildCount(); ++i) Child(i)->Search(SearchRegion, Result, Tol);
}

template <class T>
bool TRTreeNode<T>::SearchFindsAny(const TVRect2D& SearchRegion, double Tol) const {
  if (IsFarFrom(SearchRegion, Tol)) return false;
  if (IsDataNode()) return true;
  for (int i = 0; i < ChildCount(); ++i) {
    if (Child(i)->SearchFindsAny(SearchRegion, Tol)) return true;
  }
  return false;
}

template <class T>
TRTreeNode<T>* TRTreeNode<T>::ChooseInsertLeaf(const TVRect2D& Box) {
  TRTreeNode* node = this;
  NestAssert(!IsDataNode(), "[ERROR] TRTreeNode<T>.ChooseInsertLeaf: a data node has no leaf below it");
  while (!node->IsLeaf()) {
    TRTreeNode* best = node->Child(0);
    double bestGrowth = best->Growth(Box);
    for (int i = 1; i < node->ChildCount(); ++i) {
      const double growth = node->Child(i)->Growth(Box);
      if (!(growth < bestGrowth)) continue;
      best = node->Child(i);
      bestGrowth = growth;
    }
    node = best;
  }
  return node;
}

template <class T>
TRTreeNode<T>* TRTreeNode<T>::Split(const TVRect2D& AddBox) {
  NestAssert(ChildCount() >= 2);
  const std::vector<int> order = CalcGroup();
  typename TTreeNode<T>::TNodes kept;
  TRTreeNode* const sibling = FStore.Create();
  for (int i = 0; i < Size(order); ++i) {
    if (i < Size(order) / 2)
      kept.push_back(Child(order[i]));
    else
      sibling->AddChildNode(Child(order[i]));
  }
  this->Children().swap(kept);
  RefreshBox();
  if (this->IsRoot()) FStore.Create()->AddChildNode(this);
  ParentNode()->AddChildNode(sibling);
  if (!AddBox.IsValid()) return this;
  return sibling->Growth(AddBox) < Growth(AddBox) ? sibling : this;
}

template <class T>
void TRTreeNode<T>::RemoveFromParentIfEmpty(std::vector<TRTreeNode*>& RemovedNodes) {
  if (!IsDataNode()) return;
  RemovedNodes.push_back(this);
  TRTreeNode* const parent = ParentNode();
  if (parent == nullptr) return;
  auto& siblings = parent->Children();
  siblings.erase(std::find(siblings.begin(), siblings.end(), this));
  this->SetParent(nullptr);
  parent->RemoveFromParentIfEmpty(RemovedNodes);
}

template <class T>
void TRTreeNode<T>::RefreshBox() {
  FBox = TVRect2D::InvalidRect;
  for (int i = 0; i < ChildCount(); ++i) FBox.ExpandInPlace(Child(i)->FBox);
}

// The order of the children whose two halves cover less area: by left bounds, or on a tie by bottom bounds.
template <class T>
std::vector<int> TRTreeNode<T>::CalcGroup() const {
  std::vector<int> byLeft = OrderBy(&TVRect2D::Left);
  std::vector<int> byBottom = OrderBy(&TVRect2D::Bottom);
  return AreaOfHalves(byLeft) < AreaOfHalves(byBottom) ? byLeft : byBottom;
}

template <class T>
std::vector<int> TRTreeNode<T>::OrderBy(double TVRect2D::*Bound) const {
  std::vector<int> order(this->ChildNodes().size());
  for (int i = 0; i < Size(order); ++i) order[i] = i;
  SortBy(order, [this, Bound](int A, int B) { return Sign(Child(A)->FBox.*Bound, Child(B)->FBox.*Bound); });
  return order;
}

template <class T>
double TRTreeNode<T>::AreaOfHalves(const std::vector<int>& Order) const {
  TVRect2D first = TVRect2D::InvalidRect;
  TVRect2D second = TVRect2D::InvalidRect;
  for (int i = 0; i < Size(Order); ++i) (i < Size(Order) / 2 ? first : second).ExpandInPlace(Child(Order[i])->FBox);
  return first.Area() + second.Area();
}

template <class T>
TRTree<T>::TRTree(int MaxChildCount) : FMinChildCount(MaxChildCount / 2), FMaxChildCount(MaxChildCount) {
  if (MaxChildCount < 2) throw TArgumentError("[Error] TRTree.Create: a node needs room for two children");
}

template <class T>
void TRTree<T>::Insert(T Data, const TVRect2D& Box) {
  const bool isFinite =
      std::isfinite(Box.Left) && std::isfinite(Box.Right) && std::isfinite(Box.Top) && std::isfinite(Box.Bottom);
  if (!isFinite || !Box.IsValid()) throw TArgumentError("[Error] TRTree.Insert: the box is not valid");
  Remove(Data);
  TNode* leaf = FRoot;
  if (FRoot == nullptr)
    leaf = FRoot = FStore.Create();
  else
    leaf = MakeRoom(FRoot->ChooseInsertLeaf(Box), Box);
  TNode* const node = FStore.Create(Data, Box);
  leaf->AddChildNode(node);
  FDataNodeDic.emplace(Data, node);
  FKeys.Add(Data);
}

// Splits upward from a full leaf before the new data node comes, and says which half of the leaf takes it. The test is
// "at least": a split below may have given a node one child too many.
template <class T>
TRTreeNode<T>* TRTree<T>::MakeRoom(TNode* Leaf, const TVRect2D& Box) {
  TNode* result = Leaf;
  for (TNode* node = Leaf; node->ChildCount() >= FMaxChildCount; node = node->ParentNode()) {
    const bool isRoot = node->IsRoot();
    TNode* const half = SplitNode(node, node == Leaf ? Box : TVRect2D::InvalidRect);
    if (node == Leaf) result = half;
    if (isRoot) break;
  }
  return result;
}

template <class T>
void TRTree<T>::Remove(const T& Data) {
  const auto found = FDataNodeDic.find(Data);
  if (found == FDataNodeDic.end()) return;
  std::vector<TNode*> removedNodes;
  found->second->RemoveFromParentIfEmpty(removedNodes);
  if (removedNodes.back() == FRoot) FRoot = nullptr;
  FDataNodeDic.erase(found);
  FKeys.Remove(Data);
  for (const TNode* const node : removedNodes) FStore.Free(node);
}

template <class T>
void TRTree<T>::Clear() {
  FRoot = nullptr;
  FDataNodeDic.clear();
  FKeys.Clear();
  FStore.Clear();
}

template <class T>
std::vector<T> TRTree<T>::Search(const TVRect2D& SearchRegion, double Tol) const {
  std::vector<T> result;
  Search(SearchRegion, result, Tol);
  return result;
}

template <class T>
void TRTree<T>::Search(const TVRect2D& SearchRegion, std::vector<T>& ResultList, double Tol) const {
  CheckQuery(SearchRegion, Tol);
  if (FRoot != nullptr) FRoot->Search(SearchRegion, ResultList, Tol);
}

template <class T>
bool TRTree<T>::MayIntersect(const TVRect2D& SearchRegion) const {
  CheckQuery(SearchRegion, kDefaultTol);
  return FRoot != nullptr && FRoot->SearchFindsAny(SearchRegion, kDefaultTol);
}

template <class T>
TRTreeNode<T>* TRTree<T>::SplitNode(TNode* Node, const TVRect2D& Box) {
  TNode* const half = Node->Split(Box);
  if (!FRoot->IsRoot()) FRoot = FRoot->ParentNode();
  return half;
}

template <class T>
void TRTree<T>::CheckQuery(const TVRect2D& Region, double Tol) {
  for (const double number : {Region.Left, Region.Right, Region.Top, Region.Bottom, Tol}) {
    if (std::isnan(number)) throw TArgumentError("[Error] TRTree.Search: a number of the query is NaN");
  }
}

}  // namespace platenest

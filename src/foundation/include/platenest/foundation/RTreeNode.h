#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rect2D.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/TreeNode.h"
#include "platenest/foundation/Types.h"

namespace platenest {

namespace detail {

// What RelationWithRectangle calls disjoint, for boxes without NaN, in one branch: searches spend their time here.
inline bool AreDisjoint(const TVRect2D& A, const TVRect2D& B, double Tol) {
  const double gapX = std::max(A.Left - B.Right, B.Left - A.Right);
  const double gapY = std::max(A.Bottom - B.Top, B.Bottom - A.Top);
  return std::max(gapX, gapY) > Tol;
}

}  // namespace detail

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
  void SearchBelow(const TVRect2D& SearchRegion, std::vector<T>& Result, double Tol) const;
  static double Growth(const TVRect2D& Box, const TVRect2D& AddBox) { return Box.Expand(AddBox).Area() - Box.Area(); }
  int IndexOf(const TRTreeNode* ChildNode) const;
  void SetBox(const TVRect2D& Box);
  std::vector<int> CalcGroup() const;
  std::vector<int> OrderBy(double TVRect2D::*Bound) const;
  double AreaOfHalves(const std::vector<int>& Order) const;

  TVRect2D FBox = TVRect2D::InvalidRect;
  std::vector<TVRect2D> FChildBoxes;  // copies, side by side: a search reads all of them and enters few of the children
  TStore& FStore;
  int FPlace;
};

template <class T>
void TRTreeNode<T>::AddChildNode(TTreeNode<T>* ChildNode) {
  TTreeNode<T>::AddChildNode(ChildNode);
  const TRTreeNode* below = static_cast<TRTreeNode*>(ChildNode);
  FChildBoxes.push_back(below->FBox);
  for (TRTreeNode* node = this; node != nullptr; below = node, node = node->ParentNode())
    node->SetBox(node->FBox.Expand(below->FBox));
}

template <class T>
void TRTreeNode<T>::Search(const TVRect2D& SearchRegion, std::vector<T>& Result, double Tol) const {
  if (!detail::AreDisjoint(FBox, SearchRegion, Tol)) SearchBelow(SearchRegion, Result, Tol);
}

template <class T>
void TRTreeNode<T>::SearchBelow(const TVRect2D& SearchRegion, std::vector<T>& Result, double Tol) const {
  if (IsDataNode()) return Result.push_back(this->Data());
  for (int i = 0; i < ChildCount(); ++i) {
    if (!detail::AreDisjoint(FChildBoxes[i], SearchRegion, Tol)) Child(i)->SearchBelow(SearchRegion, Result, Tol);
  }
}

template <class T>
bool TRTreeNode<T>::SearchFindsAny(const TVRect2D& SearchRegion, double Tol) const {
  if (detail::AreDisjoint(FBox, SearchRegion, Tol)) return false;
  if (IsDataNode()) return true;
  for (int i = 0; i < ChildCount(); ++i) {
    if (!detail::AreDisjoint(FChildBoxes[i], SearchRegion, Tol) && Child(i)->SearchFindsAny(SearchRegion, Tol))
      return true;
  }
  return false;
}

template <class T>
TRTreeNode<T>* TRTreeNode<T>::ChooseInsertLeaf(const TVRect2D& Box) {
  TRTreeNode* node = this;
  NestAssert(!IsDataNode(), "[ERROR] TRTreeNode<T>.ChooseInsertLeaf: a data node has no leaf below it");
  while (!node->IsLeaf()) {
    int best = 0;
    double bestGrowth = Growth(node->FChildBoxes[0], Box);
    for (int i = 1; i < node->ChildCount(); ++i) {
      const double growth = Growth(node->FChildBoxes[i], Box);
      if (!(growth < bestGrowth)) continue;
      best = i;
      bestGrowth = growth;
    }
    node = node->Child(best);
  }
  return node;
}

template <class T>
TRTreeNode<T>* TRTreeNode<T>::Split(const TVRect2D& AddBox) {
  NestAssert(ChildCount() >= 2);
  const std::vector<int> order = CalcGroup();
  typename TTreeNode<T>::TNodes kept;
  std::vector<TVRect2D> keptBoxes;
  TRTreeNode* const sibling = FStore.Create();
  for (int i = 0; i < Size(order); ++i) {
    if (i >= Size(order) / 2) {
      sibling->AddChildNode(Child(order[i]));
      continue;
    }
    kept.push_back(Child(order[i]));
    keptBoxes.push_back(FChildBoxes[order[i]]);
  }
  this->Children().swap(kept);
  FChildBoxes.swap(keptBoxes);
  RefreshBox();
  if (this->IsRoot()) FStore.Create()->AddChildNode(this);
  ParentNode()->AddChildNode(sibling);
  if (!AddBox.IsValid()) return this;
  return Growth(sibling->FBox, AddBox) < Growth(FBox, AddBox) ? sibling : this;
}

template <class T>
void TRTreeNode<T>::RemoveFromParentIfEmpty(std::vector<TRTreeNode*>& RemovedNodes) {
  if (!IsDataNode()) return;
  RemovedNodes.push_back(this);
  TRTreeNode* const parent = ParentNode();
  if (parent == nullptr) return;
  const int index = parent->IndexOf(this);
  parent->Children().erase(parent->Children().begin() + index);
  parent->FChildBoxes.erase(parent->FChildBoxes.begin() + index);
  this->SetParent(nullptr);
  parent->RemoveFromParentIfEmpty(RemovedNodes);
}

template <class T>
void TRTreeNode<T>::RefreshBox() {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TVRect2D& childBox : FChildBoxes) box.ExpandInPlace(childBox);
  SetBox(box);
}

template <class T>
int TRTreeNode<T>::IndexOf(const TRTreeNode* ChildNode) const {
  const auto& children = this->ChildNodes();
  return static_cast<int>(std::find(children.begin(), children.end(), ChildNode) - children.begin());
}

// The only way to change a box: the parent's copy follows.
template <class T>
void TRTreeNode<T>::SetBox(const TVRect2D& Box) {
  FBox = Box;
  if (TRTreeNode* const parent = ParentNode()) parent->FChildBoxes[parent->IndexOf(this)] = Box;
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
  std::vector<int> order(FChildBoxes.size());
  for (int i = 0; i < Size(order); ++i) order[i] = i;
  SortBy(order, [this, Bound](int A, int B) { return Sign(FChildBoxes[A].*Bound, FChildBoxes[B].*Bound); });
  return order;
}

template <class T>
double TRTreeNode<T>::AreaOfHalves(const std::vector<int>& Order) const {
  TVRect2D first = TVRect2D::InvalidRect;
  TVRect2D second = TVRect2D::InvalidRect;
  for (int i = 0; i < Size(Order); ++i) (i < Size(Order) / 2 ? first : second).ExpandInPlace(FChildBoxes[Order[i]]);
  return first.Area() + second.Area();
}

}  // namespace platenest

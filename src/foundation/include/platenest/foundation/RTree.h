#pragma once

#include <cmath>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platenest/foundation/Collection.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/RTreeNode.h"
#include "platenest/foundation/Rect2D.h"
#include "platenest/foundation/Types.h"

namespace platenest {

// Index over axis-parallel boxes (drawing units), each under a key of type T: hashable, copyable, and unique in the
// tree. Answers do not depend on hashes: searches report in the order of the tree, lists of keys in that of insertion.
// Insert costs O(log n) amortised, as does a search with few hits in boxes that overlap little. Guttman (1984), with a
// split of its own. One thread at a time; any number of them may search a tree that nobody changes.
template <class T>
class TRTree {
 public:
  using TNode = TRTreeNode<T>;

  // MaxChildCount at least 2, else TArgumentError. With 2 every split makes the tree a level deeper: for small trees
  // only, 4 to 16 are good values.
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

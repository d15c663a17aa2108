#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace platenest {

// Node of a general tree. A node does not own its children, and its destructor leaves them alone. Someone else owns
// them, or they are made by new and die through ClearFreeChildNodes. One thread at a time.
template <class T>
class TTreeNode {
 public:
  using TNodes = std::vector<TTreeNode*>;

  TTreeNode() = default;
  explicit TTreeNode(T Data) : FData(std::move(Data)) {}
  virtual ~TTreeNode() = default;
  TTreeNode(const TTreeNode&) = delete;
  TTreeNode& operator=(const TTreeNode&) = delete;

  const T& Data() const { return FData; }
  int Depth() const { return FDepth; }
  TTreeNode* Parent() const { return FParent; }
  const TNodes& ChildNodes() const { return FChildNodes; }

  virtual bool IsRoot() const { return FParent == nullptr; }
  virtual bool IsLeaf() const { return FChildNodes.empty(); }
  // Appends a node that has no parent yet. Its depth becomes one more than the depth here, -1 in a fresh node; depths
  // below it stay as they are, so a tree with true depths is built from the root down.
  virtual void AddChildNode(TTreeNode* ChildNode);

  // This node and all below it, each in O(n) without recursion. Level by level; parents before their children; parents
  // after their children.
  virtual TNodes HierarchicalTraversal();
  virtual TNodes PreorderTraversal();
  virtual TNodes PostOrderTraversal();

  // Deletes the children, which must have been made by new. With DoesRecursive everything below them too; without it
  // their own children stay alive as roots, and are the caller's to free.
  void ClearFreeChildNodes(bool DoesRecursive);

 protected:
  void SetParent(TTreeNode* Parent) { FParent = Parent; }
  TNodes& Children() { return FChildNodes; }

 private:
  TNodes LevelOrder();

  T FData{};
  int FDepth = -1;
  TTreeNode* FParent = nullptr;
  TNodes FChildNodes;
};

template <class T>
void TTreeNode<T>::AddChildNode(TTreeNode* ChildNode) {
  FChildNodes.push_back(ChildNode);
  ChildNode->FParent = this;
  ChildNode->FDepth = FDepth + 1;
}

template <class T>
typename TTreeNode<T>::TNodes TTreeNode<T>::HierarchicalTraversal() {
  return LevelOrder();
}

template <class T>
typename TTreeNode<T>::TNodes TTreeNode<T>::PreorderTraversal() {
  TNodes result;
  TNodes stack{this};
  while (!stack.empty()) {
    TTreeNode* const node = stack.back();
    stack.pop_back();
    result.push_back(node);
    stack.insert(stack.end(), node->FChildNodes.rbegin(), node->FChildNodes.rend());
  }
  return result;
}

// The mirror image of a preorder, last child first, read backward.
template <class T>
typename TTreeNode<T>::TNodes TTreeNode<T>::PostOrderTraversal() {
  TNodes result;
  TNodes stack{this};
  while (!stack.empty()) {
    TTreeNode* const node = stack.back();
    stack.pop_back();
    result.push_back(node);
    stack.insert(stack.end(), node->FChildNodes.begin(), node->FChildNodes.end());
  }
  std::reverse(result.begin(), result.end());
  return result;
}

template <class T>
void TTreeNode<T>::ClearFreeChildNodes(bool DoesRecursive) {
  TNodes doomed = FChildNodes;
  if (DoesRecursive) {
    doomed = LevelOrder();
    doomed.erase(doomed.begin());
  } else {
    for (TTreeNode* const child : doomed) {
      for (TTreeNode* const orphan : child->FChildNodes) orphan->FParent = nullptr;
    }
  }
  for (auto node = doomed.rbegin(); node != doomed.rend(); ++node) delete *node;
  FChildNodes.clear();
}

template <class T>
typename TTreeNode<T>::TNodes TTreeNode<T>::LevelOrder() {
  TNodes result{this};  // also the queue: what stands behind next waits for its turn
  for (std::size_t next = 0; next < result.size(); ++next) {
    const TNodes& children = result[next]->FChildNodes;
    result.insert(result.end(), children.begin(), children.end());
  }
  return result;
}

}  // namespace platenest

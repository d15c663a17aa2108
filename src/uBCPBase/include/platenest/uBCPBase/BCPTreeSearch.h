#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platenest/foundation/Compare.h"
#include "platenest/uBCPBase/BCPTree.h"

// How the search walks over its nodes.
namespace platenest {

namespace detail {

// What Step returns, null for whatever it throws: an error ends a search and loses no solution.
template <class Function>
auto NullOnError(Function Step) -> decltype(Step()) {
  try {
    return Step();
  } catch (...) {
    return nullptr;
  }
}

}  // namespace detail

template <BCPVariable T>
TBCPSolution<T> TBCPTree<T>::Solve(std::atomic<bool>& Stop) {
  FPStopper = &Stop;
  return Solve(TBCPStopFunc([this] { return StopByFlag(); }));
}

template <BCPVariable T>
TBCPSolution<T> TBCPTree<T>::Solve(const TBCPStopFunc& AStopFunc) {
  FSW.Start();
  if (!GreedySolve()) return {};
  TNode* node = SolveRootNode(AStopFunc);
  if (!BoundMeet() && node != nullptr) node = Search(node, AStopFunc);
  if (FStatus == -1) {
    const bool isDone = node == nullptr || node->Calced;
    if (AStopFunc())
      FStatus = 1;
    else if (isDone)
      FStatus = 2;
  }
  return BestResult();
}

// Returns where the search stood when it ended.
template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::Search(TNode* Node, const TBCPStopFunc& AStop) {
  constexpr int kLastIteration = 1000;
  for (int counter = 1; counter <= kLastIteration && !FSW.TimeOver(); ++counter) {
    Node = detail::NullOnError([&] { return Explore(*Node, counter, AStop); });
    if (FStatus == 0 || Node == nullptr || Node->Calced || AStop()) break;
  }
  return Node;
}

// One iteration: solves a node, closes it or branches, and says where to go on. FStatus 0 tells that the bounds have
// met.
template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::Explore(TNode& Node, int Counter, const TBCPStopFunc& AStop) {
  constexpr int kResidualEach = 30;
  TNode* next = nullptr;
  if (!Node.Solve(FSW, AStop) || !Bound(Node)) {
    next = DeleteSearch(Node);
  } else if (Node.Fathom(0.001)) {
    OfferIntSolution(Node);
    next = DeleteSearch(Node);
  } else {
    if (Counter % kResidualEach == 0) OfferResidual(Node);
    next = Branch(Node);
  }
  return BoundMeet() ? next : Select(next, /*ABestFirst=*/false);
}

template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::SolveRootNode(const TBCPStopFunc& AStop) {
  std::vector<TBCPSolution<T>> arrived;
  TNode* const next = detail::NullOnError([&] { return ExploreRoot(AStop, arrived); });
  return detail::NullOnError([&] {
    for (TBCPSolution<T>& solution : arrived) UpdateBestResult(solution, solution.GetCSPCost(), /*AClone=*/false);
    return next;
  });
}

template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::ExploreRoot(const TBCPStopFunc& AStop,
                                                      std::vector<TBCPSolution<T>>& Arrived) {
  if (!FRoot.SolveWithFIFOSolutions(FSW, AStop, FFIFOSolution, Arrived) || !Bound(FRoot)) return nullptr;
  if (FRoot.Fathom(0.001)) {
    OfferIntSolution(FRoot);
    return nullptr;
  }
  OfferResidual(FRoot);
  return Branch(FRoot);
}

// A node whose branches both have no solution is closed like one that cannot branch.
template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::Branch(TNode& Node) {
  if (!Node.Branch(FCGInBranch) || Node.ChildNodes.empty()) return DeleteSearch(Node);
  for (const std::unique_ptr<TNode>& child : Node.ChildNodes) FNodeHeap.Add(child.get(), 0.0);
  return Node.ChildNodes.front().get();
}

// ABestFirst takes the next node from the heap, wherever the search stands; the search always dives.
template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::Select(TNode* Node, bool ABestFirst) {
  if (Node == nullptr) return nullptr;
  if (ABestFirst) return PopOpenNode();
  NestAssert(!Node->Calced);
  return Node->ChildNodes.empty() ? Node : FirstOpenChild(*Node);
}

// Closes the node and all above it that have no open child any more. Null when nothing is open; otherwise not the open
// child that was met, which only proves that there is work, but the best leaf of the heap.
template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::DeleteSearch(TNode& Node) {
  TNode* closed = &Node;
  Close(*closed);
  while (closed->Parent != nullptr) {
    if (FirstOpenChild(*closed->Parent) != nullptr) return PopOpenNode();
    closed = closed->Parent;
    Close(*closed);
  }
  return FirstOpenChild(*closed);
}

template <BCPVariable T>
void TBCPTree<T>::Close(TNode& Node) {
  Node.Calced = true;
  Node.ClearGarbage();
}

template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::FirstOpenChild(const TNode& Node) {
  for (const std::unique_ptr<TNode>& child : Node.ChildNodes)
    if (!child->Calced) return child.get();
  return nullptr;
}

// The last node popped where the heap runs out, although that one may be closed: the search ends on it.
template <BCPVariable T>
typename TBCPTree<T>::TNode* TBCPTree<T>::PopOpenNode() {
  TNode* node = nullptr;
  while (FNodeHeap.Count() > 0) {
    node = FNodeHeap.Pop();
    if (IsOpenLeaf(*node)) break;
  }
  return node;
}

template <BCPVariable T>
int TBCPTree<T>::CompareNodes(TNode* const& N1, TNode* const& N2) {
  NestAssert(N1->Parent != nullptr && N2->Parent != nullptr);
  if (const int byBound = Sign(N1->Parent->LLB, N2->Parent->LLB); byBound != 0) return byBound;
  if (const int byDepth = Sign(N2->Depth(), N1->Depth()); byDepth != 0) return byDepth;
  return Sign(N1->Idx(), N2->Idx());
}

}  // namespace platenest

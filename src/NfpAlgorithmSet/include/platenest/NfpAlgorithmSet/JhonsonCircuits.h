#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "platenest/NfpAlgorithmSet/BoolArray.h"
#include "platenest/NfpAlgorithmSet/DirectedGraph.h"
#include "platenest/NfpAlgorithmSet/TarjanComponents.h"

namespace platenest {

// All elementary circuits of a graph with more than a given number of vertices (Johnson 1975), without recursion, in
// the order of the recursive form: by their lowest id, then as a depth-first search along the successor lists meets
// them. Every circuit starts with its lowest id. Parallel edges give equal circuits. Time: O((V + E)(c + 1)) for c
// circuits of any length (with numFilter below 1: for V circuits more); mind that c may grow exponentially with the
// graph. Dead vertices are left out. The graph is the caller's, must outlive this object and stays unchanged. One
// thread at a time.
template <class T>
class TJhonsonCircuits {
 public:
  // Circuits of numFilter vertices and fewer are met but not kept.
  TJhonsonCircuits(const TDirectedGraph<T>& dg, int numFilter) : Graph(dg), filter(numFilter), curGraph(0) {}
  TJhonsonCircuits(TDirectedGraph<T>&&, int) = delete;
  virtual ~TJhonsonCircuits() = default;
  TJhonsonCircuits(const TJhonsonCircuits&) = delete;
  TJhonsonCircuits& operator=(const TJhonsonCircuits&) = delete;

  // Runs the whole search and appends the circuits to those already there.
  virtual void FindCircuits();
  int CircuitCount() const { return FCircuits.Count(); }
  // Valid until the list of circuits changes.
  std::span<const int> GetCircuit(int i) const { return FCircuits[i]; }

 protected:
  // Searches curGraph from v on for ways back to startVertex and appends the circuits found, each as the whole of Stack
  // at that moment. True if there is a way back, also when its circuit is too short to be kept. Afterwards Stack is as
  // before; a vertex of the search stays blocked if every way on from it meets the path, until that path frees it.
  virtual bool Circuit(int v);
  // Frees u and, through BList, whatever was blocked only on its account.
  void UnBlock(int u);

  // Searches below this class work on these directly.
  const TDirectedGraph<T>& Graph;
  TBoolArray blocked;
  std::vector<TVertexIdList> BList;  // by id
  std::vector<int> Stack;            // the path, from startVertex on
  int filter;
  int startVertex = -1;
  TDirectedGraph<int> curGraph;  // the component in hand
  TVertexIdLists FCircuits;

 private:
  struct TFrame {
    int Node;
    int NextSuccessor;
    bool Found;
  };

  void SearchComponent(std::span<const int> Component, int LowestId);
  void Enter(int Node, std::vector<TFrame>& Frames);
  void Follow(int Successor, std::vector<TFrame>& Frames);
  bool Leave(const TFrame& Frame);
};

template <class T>
void TJhonsonCircuits<T>::FindCircuits() {
  blocked.Reset(Graph.MaxVertexId() + 1);
  BList.assign(static_cast<std::size_t>(Graph.MaxVertexId() + 1), {});
  const int lastStart = Graph.MaxVertexId() - filter;
  int start = Graph.LowestId();
  TDirectedGraph<int> sub = Graph.EdgesFrom(start);
  TVertexIdList component;
  while (start <= lastStart) {
    // A component of at most filter vertices holds no circuit that is kept.
    TTarjanComponents components(sub, filter + 1);
    const int lowest = components.GetLowestIdComponent(component);
    if (component.empty()) return;
    curGraph = sub.Construct(component);
    SearchComponent(component, lowest);
    curGraph = TDirectedGraph<int>(0);
    start = lowest + 1;
    sub = sub.EdgesFrom(start);
  }
}

template <class T>
void TJhonsonCircuits<T>::SearchComponent(std::span<const int> Component, int LowestId) {
  blocked.Clear();
  for (const int id : Component) BList[static_cast<std::size_t>(id)].clear();
  startVertex = LowestId;
  Circuit(startVertex);
}

template <class T>
bool TJhonsonCircuits<T>::Circuit(int v) {
  std::vector<TFrame> frames;
  Enter(v, frames);
  for (;;) {
    TFrame& frame = frames.back();
    const TVertexIdList& successors = curGraph.Successors(frame.Node);
    if (frame.NextSuccessor < Size(successors)) {
      Follow(successors[static_cast<std::size_t>(frame.NextSuccessor++)], frames);
      continue;
    }
    const bool found = Leave(frame);
    frames.pop_back();
    if (frames.empty()) return found;
    frames.back().Found |= found;
  }
}

template <class T>
void TJhonsonCircuits<T>::Enter(int Node, std::vector<TFrame>& Frames) {
  Stack.push_back(Node);
  blocked.Set(Node);
  Frames.push_back({Node, 0, false});
}

template <class T>
void TJhonsonCircuits<T>::Follow(int Successor, std::vector<TFrame>& Frames) {
  if (Successor == startVertex) {
    Frames.back().Found = true;
    if (Size(Stack) > filter) FCircuits.push_back(Stack);
  } else if (!blocked[Successor]) {
    Enter(Successor, Frames);
  }
}

template <class T>
bool TJhonsonCircuits<T>::Leave(const TFrame& Frame) {
  if (Frame.Found) {
    UnBlock(Frame.Node);
  } else {
    for (const int successor : curGraph.Successors(Frame.Node)) {
      TVertexIdList& waiting = BList[static_cast<std::size_t>(successor)];
      if (std::ranges::find(waiting, Frame.Node) == waiting.end()) waiting.push_back(Frame.Node);
    }
  }
  Stack.pop_back();
  return Frame.Found;
}

template <class T>
void TJhonsonCircuits<T>::UnBlock(int u) {
  TVertexIdList open{u};
  blocked.Set(u, false);
  while (!open.empty()) {
    TVertexIdList& waiting = BList[static_cast<std::size_t>(open.back())];
    if (waiting.empty()) {
      open.pop_back();
      continue;
    }
    const int next = waiting.back();
    waiting.pop_back();
    if (!blocked[next]) continue;
    blocked.Set(next, false);
    open.push_back(next);
  }
}

}  // namespace platenest

#pragma once

#include "platenest/NfpAlgorithmSet/DirectedGraph.h"
#include "platenest/foundation/Export.h"

namespace platenest {

// The strongly connected components of the living part of a graph (Tarjan 1972), without recursion. Cost: O(V + E)
// once, at the first question. The graph is the caller's, must outlive this object and must not change meanwhile. One
// thread at a time.
class PLATENEST_API TTarjanComponents {
 public:
  // Components of fewer than MinSize vertices are left out; with 0 or 1 a vertex on no circuit is a component as well.
  TTarjanComponents(const TDirectedGraph<int>& Graph, int MinSize) : FGraph(Graph), FMinSize(MinSize) {}
  TTarjanComponents(TDirectedGraph<int>&&, int) = delete;

  const TDirectedGraph<int>& Graph() const { return FGraph; }
  // A component comes after those that can be reached from it. Its vertices stand in the order of discovery, so those
  // of a plain ring stand along its edges. Empty for a graph without vertices.
  const TVertexIdLists& GetStrongConnectedCompnents();
  // Fills Component with the component that holds the lowest vertex id and returns that id; -1 and an empty list if
  // there is no component.
  int GetLowestIdComponent(TVertexIdList& Component);
  // The index of the list with the most ids, the first of equals; -1 if there is none.
  static int GetLongestComponent(const TVertexIdLists& Components);
  // True if the edges of the graph make up one simple circuit of at least 3 vertices and nothing else. Vertices without
  // any edge do not count.
  bool IsSoleCircuit() const;

 private:
  struct TFrame {
    int Node;
    int NextSuccessor;
  };

  struct TMark {
    int Order = 0;  // of discovery; 0: not met, highest int: component closed
    int Low = 0;    // the lowest order that can be reached
  };

  void SearchFrom(int Root);
  void Enter(int Node);
  void Leave(int Node);

  const TDirectedGraph<int>& FGraph;
  int FMinSize;
  bool FSearched = false;
  TVertexIdLists FComponents;
  // Working data of the search.
  std::vector<TMark> FMarks;  // by id
  int FCounter = 0;
  std::vector<int> FOpen;  // met vertices whose component is not closed, in order of discovery
  std::vector<TFrame> FFrames;
};

}  // namespace platenest

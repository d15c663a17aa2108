#pragma once

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "platenest/NfpAlgorithmSet/VertexIdList.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Types.h"

namespace platenest {

// Directed graph over vertex ids 0, 1, ... with a successor list per vertex and, unless it is a pure id graph, a
// payload per vertex. Ids below LowestId are dead: they keep their place, but no search visits them. Edges keep the
// order in which they came, and every search meets them in it. A graph is a value; const operations may run in
// parallel.
template <class T>
class TDirectedGraph {
 public:
  using TVertexList = std::vector<T>;

  // One vertex without edges per payload.
  explicit TDirectedGraph(TVertexList Verts) : FVertices(std::move(Verts)), FAdjList(FVertices.size()) {}
  // Num vertices without edges and without payloads.
  explicit TDirectedGraph(int Num) : FAdjList(static_cast<std::size_t>(Num)) {}

  void AddVertex(const T& Vert) {
    FVertices.push_back(Vert);
    FAdjList.emplace_back();
  }
  // Ignores a self loop and a duplicate. An id outside the graph raises TRangeError. Cost: the successors of Start.
  void AddEdge(int Start, int Dest);
  // Appends without any check: self loops and duplicates come in, both ids must exist.
  void AddEdgeNoErr(int Start, int Dest) { FAdjList[static_cast<std::size_t>(Start)].push_back(Dest); }

  // The payload; TRangeError where there is none.
  const T& GetVertex(int Index) const;
  const TVertexList& Vertices() const { return FVertices; }
  const TVertexIdList& Successors(int Id) const { return FAdjList[static_cast<std::size_t>(Id)]; }
  bool HasEdge(int Start, int Dest) const {
    return std::ranges::find(Successors(Start), Dest) != Successors(Start).end();
  }

  // The lowest id that counts as alive.
  int LowestId() const { return FLowestId; }
  void SetLowestId(int Id) { FLowestId = Id; }
  // -1 for a graph without vertices. Dead ids count.
  int MaxVertexId() const { return Size(FAdjList) - 1; }
  // Living vertices.
  int VertexCount() const { return Size(FAdjList) - FLowestId; }

  // Incoming edges by id, duplicates and dead starts included.
  std::vector<int> InDegrees() const;
  // How many vertices have more than N edges, incoming and outgoing ones together.
  int DegreeMoreThan(int N) const;

  // True if the living edges make up one simple circuit of at least 3 vertices and nothing else; Circuit becomes its
  // vertices along the edges from the lowest id on, and is undefined otherwise. Cost: linear, without allocation once
  // Circuit has grown.
  bool FindSoleCircuit(std::vector<int>& Circuit) const;

  // The edges whose two ends are Node or above, ids unchanged, ids below Node dead. This graph's own ids below Node die
  // as well.
  TDirectedGraph<int> SubGraphFrom(int Node) {
    FLowestId = Node;
    return EdgesFrom(Node);
  }
  // The same without touching this graph.
  TDirectedGraph<int> EdgesFrom(int Node) const;
  // The living part with ids counted from LowestId, so that its own lowest id is 0. Edges to dead vertices vanish.
  TDirectedGraph<int> CloneAdjcent() const;
  // A graph of the same size with just the edges that have both ends in Scc; its lowest id is the smallest of Scc.
  TDirectedGraph<int> Construct(std::span<const int> Scc) const;

 protected:
  TVertexIdList& SuccessorsForChange(int Id) { return FAdjList[static_cast<std::size_t>(Id)]; }
  // Removes the first edge from Start to Dest; false if there is none.
  bool RemoveEdge(int Start, int Dest);
  // Back to a graph without vertices, in the same memory.
  void Clear() {
    FVertices.clear();
    FAdjList.clear();
    FLowestId = 0;
  }
  void ReserveVertices(int Count) {
    FVertices.reserve(static_cast<std::size_t>(Count));
    FAdjList.reserve(static_cast<std::size_t>(Count));
  }

 private:
  static constexpr int kNone = -1;
  static constexpr int kSeveral = -2;

  // The only living successor, or kNone or kSeveral.
  int SoleSuccessor(int Id) const;

  TVertexList FVertices;  // may be shorter than FAdjList
  int FLowestId = 0;
  std::vector<TVertexIdList> FAdjList;
};

template <class T>
void TDirectedGraph<T>::AddEdge(int Start, int Dest) {
  if (std::max(Start, Dest) > MaxVertexId() || std::min(Start, Dest) < 0) throw TRangeError("Add Edge out of range");
  if (Start != Dest && !HasEdge(Start, Dest)) AddEdgeNoErr(Start, Dest);
}

template <class T>
const T& TDirectedGraph<T>::GetVertex(int Index) const {
  if (Index < 0 || Index >= Size(FVertices)) throw TRangeError("Index out of range in GetVertex");
  return FVertices[static_cast<std::size_t>(Index)];
}

template <class T>
std::vector<int> TDirectedGraph<T>::InDegrees() const {
  std::vector<int> degrees(FAdjList.size(), 0);
  for (const TVertexIdList& successors : FAdjList)
    for (const int successor : successors) ++degrees[static_cast<std::size_t>(successor)];
  return degrees;
}

template <class T>
int TDirectedGraph<T>::DegreeMoreThan(int N) const {
  const std::vector<int> inDegrees = InDegrees();
  int count = 0;
  for (std::size_t id = 0; id < FAdjList.size(); ++id)
    if (inDegrees[id] + Size(FAdjList[id]) > N) ++count;
  return count;
}

template <class T>
int TDirectedGraph<T>::SoleSuccessor(int Id) const {
  int sole = kNone;
  for (const int successor : Successors(Id)) {
    if (successor < FLowestId) continue;
    if (sole != kNone) return kSeveral;
    sole = successor;
  }
  return sole;
}

// At most one way on from everywhere: what comes home over all edges is a ring and leaves none aside.
template <class T>
bool TDirectedGraph<T>::FindSoleCircuit(std::vector<int>& Circuit) const {
  int start = kNone;
  int edges = 0;
  for (int id = MaxVertexId(); id >= FLowestId; --id) {
    const int successor = SoleSuccessor(id);
    if (successor == kSeveral) return false;
    if (successor == kNone) continue;
    ++edges;
    start = id;
  }
  if (edges < 3) return false;
  Circuit.clear();
  int id = start;
  do {
    Circuit.push_back(id);
    id = SoleSuccessor(id);
  } while (id >= 0 && id != start && Size(Circuit) < edges);
  return id == start && Size(Circuit) == edges;
}

template <class T>
TDirectedGraph<int> TDirectedGraph<T>::EdgesFrom(int Node) const {
  TDirectedGraph<int> sub(Size(FAdjList));
  sub.SetLowestId(Node);
  for (int id = Node; id <= MaxVertexId(); ++id)
    for (const int successor : Successors(id))
      if (successor >= Node) sub.AddEdgeNoErr(id, successor);
  return sub;
}

template <class T>
TDirectedGraph<int> TDirectedGraph<T>::CloneAdjcent() const {
  TDirectedGraph<int> clone(VertexCount());
  for (int id = FLowestId; id <= MaxVertexId(); ++id)
    for (const int successor : Successors(id))
      if (successor >= FLowestId) clone.AddEdgeNoErr(id - FLowestId, successor - FLowestId);
  return clone;
}

template <class T>
TDirectedGraph<int> TDirectedGraph<T>::Construct(std::span<const int> Scc) const {
  TDirectedGraph<int> part(Size(FAdjList));
  if (Scc.empty()) return part;
  part.SetLowestId(std::ranges::min(Scc));
  std::vector<char> inScc(FAdjList.size(), 0);
  for (const int id : Scc) inScc[static_cast<std::size_t>(id)] = 1;
  for (const int id : Scc)
    for (const int successor : Successors(id))
      if (inScc[static_cast<std::size_t>(successor)] != 0) part.AddEdgeNoErr(id, successor);
  return part;
}

template <class T>
bool TDirectedGraph<T>::RemoveEdge(int Start, int Dest) {
  TVertexIdList& successors = SuccessorsForChange(Start);
  const auto place = std::ranges::find(successors, Dest);
  if (place == successors.end()) return false;
  successors.erase(place);
  return true;
}

}  // namespace platenest

#pragma once

#include <random>
#include <utility>
#include <vector>

#include "platenest/NfpAlgorithmSet/DirectedGraph.h"
#include "platenest/NfpAlgorithmSet/JhonsonCircuits.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"

namespace platenest {

using TIdGraph = TDirectedGraph<int>;

inline TIdGraph GraphOf(int Count, const std::vector<std::pair<int, int>>& Edges) {
  TIdGraph graph(Count);
  for (const auto& [start, dest] : Edges) graph.AddEdgeNoErr(start, dest);
  return graph;
}

inline TVectorGraph VectorGraphOf(const std::vector<TPoint2D>& Points, const std::vector<std::pair<int, int>>& Edges) {
  TVectorGraph graph(Size(Points));
  for (const TPoint2D& point : Points) graph.AddVertex(point);
  for (const auto& [start, dest] : Edges) graph.AddEdgeNoErr(start, dest);
  return graph;
}

// First -> First + 1 -> ... -> First + Length - 1 -> First.
template <class TGraph>
void AddRing(TGraph& Graph, int First, int Length) {
  for (int i = 0; i < Length; ++i) Graph.AddEdgeNoErr(First + i, First + (i + 1) % Length);
}

inline TIdGraph RandomGraph(int Count, int EdgeCount, bool Simple, std::mt19937& Random) {
  TIdGraph graph(Count);
  for (int i = 0; i < EdgeCount; ++i) {
    const int start = static_cast<int>(Random() % Count);
    const int dest = static_cast<int>(Random() % Count);
    if (Simple)
      graph.AddEdge(start, dest);
    else
      graph.AddEdgeNoErr(start, dest);
  }
  return graph;
}

inline std::vector<int> Ids(std::span<const int> List) {
  return {List.begin(), List.end()};
}

using TLists = std::vector<std::vector<int>>;

inline TLists Lists(const TVertexIdLists& All) {
  TLists lists;
  for (int i = 0; i < All.Count(); ++i) lists.push_back(Ids(All[i]));
  return lists;
}

template <class T>
TLists CircuitsOf(const TJhonsonCircuits<T>& Search) {
  TLists circuits;
  for (int i = 0; i < Search.CircuitCount(); ++i) circuits.push_back(Ids(Search.GetCircuit(i)));
  return circuits;
}

}  // namespace platenest

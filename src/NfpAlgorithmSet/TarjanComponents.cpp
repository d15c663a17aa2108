#include "platenest/NfpAlgorithmSet/TarjanComponents.h"

#include <algorithm>
#include <limits>

namespace platenest {

namespace {
constexpr int kClosed = std::numeric_limits<int>::max();
}

const TVertexIdLists& TTarjanComponents::GetStrongConnectedCompnents() {
  if (FSearched) return FComponents;
  const std::size_t count = static_cast<std::size_t>(FGraph.MaxVertexId() + 1);
  FOrder.assign(count, 0);
  FLow.assign(count, 0);
  for (int id = FGraph.LowestId(); id <= FGraph.MaxVertexId(); ++id)
    if (FOrder[id] == 0) SearchFrom(id);
  FSearched = true;
  FOrder = FLow = FOpen = {};
  FFrames = {};
  return FComponents;
}

void TTarjanComponents::SearchFrom(int Root) {
  Enter(Root);
  while (!FFrames.empty()) {
    TFrame& frame = FFrames.back();
    const int node = frame.Node;
    const TVertexIdList& successors = FGraph.Successors(node);
    if (frame.NextSuccessor == Size(successors)) {
      Leave(node);
      continue;
    }
    const int successor = successors[frame.NextSuccessor++];
    if (successor < FGraph.LowestId()) continue;
    if (FOrder[successor] == 0)
      Enter(successor);
    else
      FLow[node] = std::min(FLow[node], FOrder[successor]);
  }
}

void TTarjanComponents::Enter(int Node) {
  FOrder[Node] = FLow[Node] = ++FCounter;
  FOpen.push_back(Node);
  FFrames.push_back({Node, 0});
}

void TTarjanComponents::Leave(int Node) {
  FFrames.pop_back();
  if (!FFrames.empty()) {
    int& low = FLow[FFrames.back().Node];
    low = std::min(low, FLow[Node]);
  }
  if (FLow[Node] != FOrder[Node]) return;
  std::size_t first = FOpen.size() - 1;
  while (FOpen[first] != Node) --first;
  for (std::size_t i = first; i < FOpen.size(); ++i) FOrder[FOpen[i]] = kClosed;
  const std::span<const int> component(FOpen.begin() + static_cast<std::ptrdiff_t>(first), FOpen.end());
  if (Size(component) >= FMinSize) FComponents.push_back(component);
  FOpen.resize(first);
}

int TTarjanComponents::GetLowestIdComponent(TVertexIdList& Component) {
  GetStrongConnectedCompnents();
  Component.clear();
  int lowest = kClosed;
  int found = -1;
  for (int i = 0; i < FComponents.Count(); ++i) {
    const int smallest = std::ranges::min(FComponents[i]);
    if (smallest >= lowest) continue;
    lowest = smallest;
    found = i;
  }
  if (found < 0) return -1;
  Component.assign(FComponents[found]);
  return lowest;
}

int TTarjanComponents::GetLongestComponent(const TVertexIdLists& Components) {
  int longest = -1;
  for (int i = 0; i < Components.Count(); ++i)
    if (longest < 0 || Components[i].size() > Components[longest].size()) longest = i;
  return longest;
}

bool TTarjanComponents::IsSoleCircuit() const {
  const std::vector<int> inDegrees = FGraph.InDegrees();
  int onCircuit = 0;
  int start = -1;
  for (int id = 0; id <= FGraph.MaxVertexId(); ++id) {
    const int outDegree = Size(FGraph.Successors(id));
    if (inDegrees[id] == 0 && outDegree == 0) continue;
    if (inDegrees[id] != 1 || outDegree != 1) return false;
    ++onCircuit;
    start = id;
  }
  if (onCircuit < 3) return false;
  // With one edge in and one out everywhere the graph is a set of rings: it is one if the first is as long as all.
  int length = 0;
  int id = start;
  do {
    id = FGraph.Successors(id).front();
    ++length;
  } while (id != start);
  return length == onCircuit;
}

}  // namespace platenest

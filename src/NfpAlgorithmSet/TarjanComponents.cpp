#include "platenest/NfpAlgorithmSet/TarjanComponents.h"

#include <algorithm>
#include <limits>

#include "SpareBuffers.h"

namespace platenest {

namespace {
constexpr int kClosed = std::numeric_limits<int>::max();
}

const TVertexIdLists& TTarjanComponents::GetStrongConnectedCompnents() {
  if (FSearched) return FComponents;
  const std::size_t count = static_cast<std::size_t>(FGraph.MaxVertexId() + 1);
  FMarks = detail::TSpareBuffers<TMark>::Take(count);
  FOpen = detail::TSpareBuffers<int>::Take(count);
  FFrames = detail::TSpareBuffers<TFrame>::Take(count);
  FMarks.assign(count, {});
  for (int id = FGraph.LowestId(); id <= FGraph.MaxVertexId(); ++id)
    if (FMarks[id].Order == 0) SearchFrom(id);
  FSearched = true;
  detail::TSpareBuffers<TMark>::Give(std::move(FMarks));
  detail::TSpareBuffers<int>::Give(std::move(FOpen));
  detail::TSpareBuffers<TFrame>::Give(std::move(FFrames));
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
    const int order = FMarks[successor].Order;
    if (order == 0)
      Enter(successor);
    else
      FMarks[node].Low = std::min(FMarks[node].Low, order);
  }
}

void TTarjanComponents::Enter(int Node) {
  ++FCounter;
  FMarks[Node] = {FCounter, FCounter};
  FOpen.push_back(Node);
  FFrames.push_back({Node, 0});
}

void TTarjanComponents::Leave(int Node) {
  FFrames.pop_back();
  if (!FFrames.empty()) {
    int& low = FMarks[FFrames.back().Node].Low;
    low = std::min(low, FMarks[Node].Low);
  }
  if (FMarks[Node].Low != FMarks[Node].Order) return;
  std::size_t first = FOpen.size() - 1;
  while (FOpen[first] != Node) --first;
  for (std::size_t i = first; i < FOpen.size(); ++i) FMarks[FOpen[i]].Order = kClosed;
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
  std::vector<int> circuit;
  return FGraph.FindSoleCircuit(circuit);
}

}  // namespace platenest

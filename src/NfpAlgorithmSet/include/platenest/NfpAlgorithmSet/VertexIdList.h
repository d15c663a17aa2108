#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "platenest/foundation/InlineVector.h"
#include "platenest/foundation/Types.h"

namespace platenest {

// Vertex ids of a graph in the order in which they came: successors of a vertex, a circuit, a component.
using TVertexIdList = TInlineVector<int, 4>;

// A list of id lists that stand one behind the other in one buffer: circuits and components, of which there may be
// very many short ones or a few very long ones. The spans that it gives out are valid until the next change.
class TVertexIdLists {
 public:
  int Count() const { return static_cast<int>(FEnds.size()); }
  std::size_t size() const { return FEnds.size(); }
  bool empty() const { return FEnds.empty(); }
  std::span<const int> operator[](int Index) const {
    const std::size_t begin = Index == 0 ? 0 : FEnds[static_cast<std::size_t>(Index) - 1];
    return {FIds.data() + begin, FIds.data() + FEnds[static_cast<std::size_t>(Index)]};
  }
  // Ids in the first ListCount lists together.
  Int64 TotalSize(int ListCount) const {
    return ListCount == 0 ? 0 : static_cast<Int64>(FEnds[static_cast<std::size_t>(ListCount) - 1]);
  }

  // Ids must not lie in this object.
  void push_back(std::span<const int> Ids) {
    FIds.insert(FIds.end(), Ids.begin(), Ids.end());
    FEnds.push_back(FIds.size());
  }
  void clear() {
    FIds.clear();
    FEnds.clear();
  }
  void reserve(std::size_t ListCount) { FEnds.reserve(ListCount); }
  void ReserveIds(std::size_t IdCount) { FIds.reserve(IdCount); }

 private:
  std::vector<int> FIds;
  std::vector<std::size_t> FEnds;  // one past the last id of each list
};

}  // namespace platenest

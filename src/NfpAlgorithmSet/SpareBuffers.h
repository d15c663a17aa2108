#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace platenest::detail {

// Buffers that the thread keeps between two short searches, since their memory costs more than the search otherwise. At
// most a few stay, and none that is large.
template <class T>
class TSpareBuffers {
 public:
  TSpareBuffers() = delete;

  // An empty list with room for Count.
  static std::vector<T> Take(std::size_t Count) {
    std::vector<T> buffer;
    if (!FSpares.empty()) {
      buffer = std::move(FSpares.back());
      FSpares.pop_back();
    }
    buffer.reserve(Count);
    return buffer;
  }
  static void Give(std::vector<T> Buffer) {
    if (Buffer.capacity() > kMostBytes / sizeof(T) || FSpares.size() == kMostSpares) return;
    Buffer.clear();
    FSpares.push_back(std::move(Buffer));
  }

 private:
  static constexpr std::size_t kMostBytes = 1 << 18;
  static constexpr std::size_t kMostSpares = 4;

  inline static thread_local std::vector<std::vector<T>> FSpares;
};

}  // namespace platenest::detail

#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace platenest::detail {

// Buffers that the thread keeps between two short searches, since their memory costs more than the search otherwise. A
// few stay, and none that is large.
template <class T>
class TSpareBuffers {
 public:
  TSpareBuffers() = delete;

  // An empty list with room for Count.
  static std::vector<T> Take(std::size_t Count) {
    std::vector<T> buffer;
    if (FSpares.Count > 0) buffer = std::move(FSpares.Buffers[--FSpares.Count]);
    buffer.reserve(Count);
    return buffer;
  }
  static void Give(std::vector<T> Buffer) noexcept {
    if (Buffer.capacity() > kMostBytes / sizeof(T) || FSpares.Count == kMostSpares) return;
    Buffer.clear();
    FSpares.Buffers[FSpares.Count++] = std::move(Buffer);
  }

 private:
  static constexpr std::size_t kMostBytes = 1 << 18;
  static constexpr std::size_t kMostSpares = 4;

  struct TSpares {
    std::vector<T> Buffers[kMostSpares];
    std::size_t Count = 0;
  };
  inline static thread_local TSpares FSpares;
};

}  // namespace platenest::detail

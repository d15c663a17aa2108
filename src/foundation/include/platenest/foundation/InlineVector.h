#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace platenest {

// A list of small plain values that holds up to N of them inside itself and takes memory only beyond that. Meant for
// great numbers of mostly short lists: with int and N = 4 one list takes 24 bytes. Otherwise a vector: copies are deep,
// a moved-from list is empty, growth doubles the room and makes iterators invalid. An index outside the list is
// undefined. One thread at a time.
template <class T, int N>
class TInlineVector {
  static_assert(std::is_trivial_v<T>, "values are moved as bytes");
  static_assert(N > 0);

 public:
  using value_type = T;
  using iterator = T*;
  using const_iterator = const T*;
  using reference = T&;
  using const_reference = const T&;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;

  TInlineVector() noexcept : FStorage{} {}
  TInlineVector(std::initializer_list<T> Items) : TInlineVector(Items.begin(), Items.end()) {}
  template <std::forward_iterator Iterator>
  TInlineVector(Iterator From, Iterator To) : TInlineVector() {
    reserve(static_cast<size_type>(std::distance(From, To)));
    FSize = static_cast<int>(std::copy(From, To, begin()) - begin());
  }
  TInlineVector(const TInlineVector& Other) : TInlineVector(Other.begin(), Other.end()) {}
  TInlineVector(TInlineVector&& Other) noexcept : TInlineVector() { Swap(Other); }
  TInlineVector& operator=(const TInlineVector& Other) {
    if (this != &Other) assign(Other);
    return *this;
  }
  TInlineVector& operator=(TInlineVector&& Other) noexcept {
    TInlineVector taken(std::move(Other));
    Swap(taken);
    return *this;
  }
  ~TInlineVector() { Release(); }

  iterator begin() noexcept { return data(); }
  iterator end() noexcept { return data() + FSize; }
  const_iterator begin() const noexcept { return data(); }
  const_iterator end() const noexcept { return data() + FSize; }
  T* data() noexcept { return OnHeap() ? FStorage.Heap : FStorage.Inline; }
  const T* data() const noexcept { return OnHeap() ? FStorage.Heap : FStorage.Inline; }
  size_type size() const noexcept { return static_cast<size_type>(FSize); }
  size_type capacity() const noexcept { return static_cast<size_type>(FCapacity); }
  bool empty() const noexcept { return FSize == 0; }
  T& operator[](size_type Index) { return data()[Index]; }
  const T& operator[](size_type Index) const { return data()[Index]; }
  T& front() { return data()[0]; }
  const T& front() const { return data()[0]; }
  T& back() { return data()[FSize - 1]; }
  const T& back() const { return data()[FSize - 1]; }

  // By value, so that an element of the list itself may be given.
  void push_back(T Item) {
    if (FSize == FCapacity) Grow(size() + 1);
    data()[FSize++] = Item;
  }
  void pop_back() { --FSize; }
  // Keeps the room.
  void clear() noexcept { FSize = 0; }
  void reserve(size_type Count) {
    if (Count > capacity()) Grow(Count);
  }
  // Keeps the order of the others. Returns the place after the erased one.
  iterator erase(const_iterator Place) {
    const iterator place = begin() + (Place - begin());
    std::copy(place + 1, end(), place);
    --FSize;
    return place;
  }
  // Items must not lie in this list.
  void assign(std::span<const T> Items) {
    clear();
    reserve(Items.size());
    std::copy(Items.begin(), Items.end(), begin());
    FSize = static_cast<int>(Items.size());
  }

  friend bool operator==(const TInlineVector& A, const TInlineVector& B) {
    return std::equal(A.begin(), A.end(), B.begin(), B.end());
  }

 private:
  bool OnHeap() const noexcept { return FCapacity > N; }

  void Grow(size_type AtLeast) {
    constexpr size_type limit = std::numeric_limits<int>::max();
    if (AtLeast > limit) throw std::bad_alloc();
    const size_type capacity = std::min(limit, std::max(AtLeast, 2 * this->capacity()));
    T* const heap = std::allocator<T>().allocate(capacity);
    std::uninitialized_copy(begin(), end(), heap);
    Release();
    FStorage.Heap = heap;
    FCapacity = static_cast<int>(capacity);
  }

  void Release() noexcept {
    if (OnHeap()) std::allocator<T>().deallocate(FStorage.Heap, capacity());
  }

  void Swap(TInlineVector& Other) noexcept {
    std::swap(FStorage, Other.FStorage);
    std::swap(FSize, Other.FSize);
    std::swap(FCapacity, Other.FCapacity);
  }

  union TStorage {
    T Inline[N];
    T* Heap;
  };
  TStorage FStorage;
  int FSize = 0;
  int FCapacity = N;
};

}  // namespace platenest

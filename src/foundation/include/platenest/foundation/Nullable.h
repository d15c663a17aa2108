#pragma once

#include <utility>

// A plain value, without state of its own; safe on any thread.
namespace platenest {

// A value that may be missing. Value may hold something while HasValue is false, but GetValueOrDefault never shows it.
template <class T>
struct TNullable {
  bool HasValue = false;
  T Value{};

  TNullable() = default;
  explicit TNullable(bool AHasValue) : HasValue(AHasValue) {}
  TNullable(bool AHasValue, T AValue) : HasValue(AHasValue), Value(std::move(AValue)) {}

  void Clear() { *this = TNullable(); }
  bool IsNull() const { return !HasValue; }
  T GetValueOrDefault() const { return HasValue ? Value : T{}; }
  T GetValueOrDefault(const T& Default) const { return HasValue ? Value : Default; }
};

}  // namespace platenest

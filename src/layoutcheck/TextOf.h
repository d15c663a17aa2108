#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>
#include <system_error>

namespace platenest::detail {

// The shortest decimal digits that read back as the same double, with a point in every locale and without an exponent.
inline void AppendPart(std::string& Text, double Value) {
  char digits[400];  // the longest double has 309 digits before the point or 325 behind it
  const auto [end, error] =
      std::to_chars(digits, digits + sizeof digits, Value == 0 ? 0.0 : Value, std::chars_format::fixed);
  if (error == std::errc()) Text.append(digits, end);
}
template <std::integral T>
void AppendPart(std::string& Text, T Value) {
  Text += std::to_string(Value);
}
inline void AppendPart(std::string& Text, std::string_view Part) {
  Text += Part;
}

// Texts and numbers in a row.
template <class... Parts>
std::string TextOf(const Parts&... All) {
  std::string text;
  (AppendPart(text, All), ...);
  return text;
}

}  // namespace platenest::detail

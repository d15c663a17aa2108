#pragma once

#include <string>
#include <string_view>

namespace platenest::detail {

// One character of UTF-8 text and the bytes it took.
struct TCodePoint {
  char32_t Value;  // U+FFFD for a byte that does not begin a well-formed sequence
  int Bytes;
};
TCodePoint NextCodePoint(std::string_view Text);

// The text as content or as a quoted attribute value of XML 1.0.
std::string XmlText(std::string_view Text);

// How wide the text is in a common sans-serif face, in ems, on the safe side.
double TextWidth(std::string_view Text);

}  // namespace platenest::detail

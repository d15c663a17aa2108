#include "XmlText.h"

namespace platenest::detail {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Bytes of the sequence that begins with this byte; 0 when none does.
int SequenceLength(unsigned char First) {
  if (First < 0x80) return 1;
  if (First >= 0xC2 && First <= 0xDF) return 2;
  if (First >= 0xE0 && First <= 0xEF) return 3;
  return First >= 0xF0 && First <= 0xF4 ? 4 : 0;
}

// Not overlong, no surrogate, not above U+10FFFF.
bool IsWellFormed(char32_t Value, int Bytes) {
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  return Value >= kLeast[Bytes] && Value <= 0x10FFFF && !(Value >= 0xD800 && Value <= 0xDFFF);
}

bool IsXmlCharacter(char32_t Value) {
  return Value >= 0x20 ? Value != 0xFFFE && Value != 0xFFFF : Value == '\t' || Value == '\n' || Value == '\r';
}

// What stands for a character that has a meaning in XML or would be changed on reading; nullptr for all others.
const char* Escape(char32_t Value) {
  switch (Value) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return nullptr;
  }
}

}  // namespace

TCodePoint NextCodePoint(std::string_view Text) {
  const auto byte = [&](int I) { return static_cast<unsigned char>(Text[I]); };
  const int length = SequenceLength(byte(0));
  if (length == 1) return {byte(0), 1};
  if (length == 0 || Text.size() < static_cast<std::size_t>(length)) return {kReplacement, 1};
  char32_t value = byte(0) & (0x7Fu >> length);
  for (int i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {kReplacement, 1};
    value = value << 6 | (byte(i) & 0x3Fu);
  }
  return IsWellFormed(value, length) ? TCodePoint{value, length} : TCodePoint{kReplacement, 1};
}

std::string XmlText(std::string_view Text) {
  std::string out;
  out.reserve(Text.size());
  while (!Text.empty()) {
    const TCodePoint next = NextCodePoint(Text);
    if (const char* escape = Escape(next.Value))
      out += escape;
    else if (!IsXmlCharacter(next.Value) || next.Value == kReplacement)
      out += "\xEF\xBF\xBD";
    else
      out += Text.substr(0, next.Bytes);
    Text.remove_prefix(next.Bytes);
  }
  return out;
}

double TextWidth(std::string_view Text) {
  constexpr std::string_view kNarrow = "fijlrtI.,:;'|!()[]/\\ -";
  constexpr std::string_view kWide = "mwMW@%&";
  double width = 0;
  while (!Text.empty()) {
    const TCodePoint next = NextCodePoint(Text);
    const char letter = next.Bytes == 1 ? Text[0] : 'x';
    if (next.Value >= 0x1100)
      width += 1.05;  // full-width scripts
    else if (kWide.find(letter) != std::string_view::npos)
      width += 1;
    else if (kNarrow.find(letter) != std::string_view::npos)
      width += 0.42;
    else
      width += next.Value >= 0x80 || (letter >= 'A' && letter <= 'Z') ? 0.75 : 0.64;
    Text.remove_prefix(next.Bytes);
  }
  return width;
}

}  // namespace platenest::detail

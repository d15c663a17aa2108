#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

namespace platenest {

namespace {

// Levenshtein distance: letters to add, drop or exchange.
std::size_t EditDistance(std::string_view A, std::string_view B) {
  std::vector<std::size_t> row(B.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 0; i < A.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < B.size(); ++j) {
      const std::size_t exchanged = diagonal + (A[i] == B[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({exchanged, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// C0 controls, delete, and the C1 controls, which UTF-8 writes as C2 80 to C2 9F.
bool IsControl(std::string_view Text, std::size_t At) {
  const auto byte = static_cast<unsigned char>(Text[At]);
  if (byte < 0x20 || byte == 0x7F) return true;
  return byte < 0xA0 && byte >= 0x80 && At > 0 && static_cast<unsigned char>(Text[At - 1]) == 0xC2;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view Text) {
  double value = 0;
  const char* const end = Text.data() + Text.size();
  const auto [stop, error] = std::from_chars(Text.data(), end, value);
  if (error != std::errc{} || stop != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::string Shortest(double Value) {
  char buffer[32];
  const bool isPlain = std::fabs(Value) < 1e15 && (Value == 0 || std::fabs(Value) >= 1e-6);
  const auto [end, error] = isPlain ? std::to_chars(buffer, buffer + sizeof buffer, Value, std::chars_format::fixed)
                                    : std::to_chars(buffer, buffer + sizeof buffer, Value);
  return error == std::errc{} ? std::string(buffer, end) : std::string("?");
}

std::string Fixed(double Value, int Decimals) {
  char buffer[400];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, Value, std::chars_format::fixed, Decimals);
  if (error != std::errc{}) return "?";
  const std::string text(buffer, end);
  const bool isZero = text.find_first_not_of("-0.") == text.npos;  // what is a hair below 0 has no sign either
  return isZero && text.front() == '-' ? text.substr(1) : text;
}

std::string Printable(std::string_view Text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string line;
  line.reserve(Text.size());
  for (std::size_t i = 0; i < Text.size(); ++i) {
    if (!IsControl(Text, i)) {
      line += Text[i];
      continue;
    }
    const auto byte = static_cast<unsigned char>(Text[i]);
    line += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
  }
  return line;
}

std::string_view NearestWord(std::string_view Word, std::span<const std::string_view> Candidates) {
  if (Word.size() > 64) return {};
  std::string_view nearest;
  std::size_t best = Word.size() < 4 ? 2 : 3;
  for (const std::string_view candidate : Candidates) {
    const std::size_t distance = EditDistance(Word, candidate);
    if (distance >= best) continue;
    best = distance;
    nearest = candidate;
  }
  return nearest;
}

std::string DidYouMean(std::string_view Word, std::span<const std::string_view> Candidates) {
  const std::string_view nearest = NearestWord(Word, Candidates);
  return nearest.empty() ? std::string() : " (did you mean " + std::string(nearest) + "?)";
}

}  // namespace platenest

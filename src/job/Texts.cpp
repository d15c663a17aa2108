#include "Texts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

constexpr std::string_view kBom = "\xEF\xBB\xBF";
constexpr std::size_t kShownBytes = 40;
constexpr std::size_t kLongestSlip = 40;  // longer words are no slips of a known one

bool IsContinuation(char C) {
  return (static_cast<unsigned char>(C) & 0xC0) == 0x80;
}

// C1 controls are two bytes in UTF-8, 0xC2 and 0x80 to 0x9F; some terminals obey them.
bool IsC1(std::string_view Text, std::size_t I) {
  return Text[I] == '\xC2' && I + 1 < Text.size() && static_cast<unsigned char>(Text[I + 1]) < 0xA0;
}

bool IsC0(char C) {
  return static_cast<unsigned char>(C) < 0x20 || C == '\x7F';
}

void AppendEscape(std::string& Out, unsigned char Code) {
  constexpr std::string_view named = "\b\f\n\r\t";
  constexpr std::string_view digits = "0123456789abcdef";
  Out += '\\';
  if (const std::size_t at = named.find(static_cast<char>(Code)); at != named.npos) {
    Out += "bfnrt"[at];
    return;
  }
  Out += "u00";
  Out += digits[Code / 16];
  Out += digits[Code % 16];
}

// The length of the UTF-8 character at I, 0 if there is none: no overlong forms, surrogates or values past U+10FFFF.
std::size_t Utf8Length(std::string_view Text, std::size_t I) {
  const auto byte = [&](std::size_t k) -> unsigned {
    return I + k < Text.size() ? static_cast<unsigned char>(Text[I + k]) : 0u;
  };
  const auto tail = [&](std::size_t k) { return (byte(k) & 0xC0u) == 0x80u; };
  const unsigned lead = byte(0);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return tail(1) ? 2 : 0;
  if (lead >= 0xE0 && lead < 0xF0) {
    const bool valid = !(lead == 0xE0 && byte(1) < 0xA0) && !(lead == 0xED && byte(1) > 0x9F);
    return valid && tail(1) && tail(2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead < 0xF5) {
    const bool valid = !(lead == 0xF0 && byte(1) < 0x90) && !(lead == 0xF4 && byte(1) > 0x8F);
    return valid && tail(1) && tail(2) && tail(3) ? 4 : 0;
  }
  return 0;
}

// Damerau 1964, Levenshtein 1966, in the restricted form: insertions, deletions, replacements and swaps of neighbours.
int EditDistance(std::string_view A, std::string_view B) {
  std::vector<std::vector<int>> cost(A.size() + 1, std::vector<int>(B.size() + 1));
  for (int i = 0; i <= Size(A); ++i) cost[i][0] = i;
  for (int j = 0; j <= Size(B); ++j) cost[0][j] = j;
  for (int i = 1; i <= Size(A); ++i) {
    for (int j = 1; j <= Size(B); ++j) {
      const int change = cost[i - 1][j - 1] + (A[i - 1] == B[j - 1] ? 0 : 1);
      cost[i][j] = std::min({change, cost[i - 1][j] + 1, cost[i][j - 1] + 1});
      const bool swapped = i > 1 && j > 1 && A[i - 1] == B[j - 2] && A[i - 2] == B[j - 1];
      if (swapped) cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
    }
  }
  return cost[A.size()][B.size()];
}

std::string LowerCase(std::string_view Text) {
  std::string lower(Text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

}  // namespace

void AppendNumber(std::string& Out, double V) {
  if (V == 0) V = 0;
  char buffer[64];
  const double size = std::fabs(V);
  const bool plain = V == 0 || (size >= 1e-6 && size < 1e15);
  const std::to_chars_result end = plain ? std::to_chars(buffer, buffer + sizeof buffer, V, std::chars_format::fixed)
                                         : std::to_chars(buffer, buffer + sizeof buffer, V);
  Out.append(buffer, end.ptr);
}

void AppendPart(std::string& Out, std::int64_t Part) {
  Out += std::to_string(Part);
}

void AppendPart(std::string& Out, std::uint64_t Part) {
  Out += std::to_string(Part);
}

std::string NumberText(double V) {
  std::string out;
  AppendNumber(out, V);
  return out;
}

std::optional<double> NumberFromText(std::string_view Text) {
  if (Text.starts_with('+') && !Text.starts_with("+-")) Text.remove_prefix(1);
  double value = 0;
  const std::from_chars_result end = std::from_chars(Text.data(), Text.data() + Text.size(), value);
  if (end.ec != std::errc{} || end.ptr != Text.data() + Text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

void AppendEscaped(std::string& Out, std::string_view Text, bool Quotes) {
  std::size_t done = 0;
  for (std::size_t i = 0; i < Text.size(); ++i) {
    const bool c1 = IsC1(Text, i);
    const bool mark = Quotes && (Text[i] == '"' || Text[i] == '\\');
    if (!c1 && !mark && !IsC0(Text[i])) continue;
    Out.append(Text, done, i - done);
    if (mark) {
      Out += '\\';
      Out += Text[i];
    } else {
      AppendEscape(Out, static_cast<unsigned char>(Text[c1 ? ++i : i]));
    }
    done = i + 1;
  }
  Out.append(Text, done);
}

std::string Quoted(std::string_view Text) {
  std::size_t end = std::min(Text.size(), kShownBytes);
  while (end > 0 && end < Text.size() && IsContinuation(Text[end])) --end;
  std::string out = "\"";
  AppendEscaped(out, Text.substr(0, end), true);
  out += end < Text.size() ? "...\"" : "\"";
  return out;
}

int CharacterCount(std::string_view Text) {
  return static_cast<int>(std::ranges::count_if(Text, [](char c) { return !IsContinuation(c); }));
}

bool HasControlCharacter(std::string_view Text) {
  for (std::size_t i = 0; i < Text.size(); ++i) {
    if (IsC0(Text[i]) || IsC1(Text, i)) return true;
  }
  return false;
}

std::optional<std::size_t> FindBadUtf8(std::string_view Text) {
  std::size_t i = 0;
  while (i < Text.size()) {
    const std::size_t length = Utf8Length(Text, i);
    if (length == 0) return i;
    i += length;
  }
  return std::nullopt;
}

std::string LineAndColumn(std::string_view Text, std::size_t Position) {
  const std::string_view before = Text.substr(0, Position);
  const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0
  const auto line = std::ranges::count(before, '\n') + 1;
  const int column = CharacterCount(line == 1 ? WithoutBom(before) : before.substr(lineStart)) + 1;
  return Joined("line ", line, ", column ", column);
}

std::string NearMiss(std::string_view Word, std::span<const std::string_view> Known) {
  if (Word.empty() || Word.size() > kLongestSlip) return "";
  const std::string lower = LowerCase(Word);
  int best = Word.size() > 4 ? 3 : 2;  // at most two slips, in a short word one
  std::string_view nearest;
  for (const std::string_view known : Known) {
    const int distance = EditDistance(lower, known);
    if (distance >= best || distance >= Size(known)) continue;
    best = distance;
    nearest = known;
  }
  return nearest.empty() ? "" : Joined(", did you mean `", nearest, "`?");
}

std::string Listed(std::span<const std::string_view> Words) {
  std::string out;
  for (const std::string_view word : Words) {
    if (!out.empty()) out += ", ";
    out += word;
  }
  return out;
}

std::string_view WithoutBom(std::string_view Text) {
  return Text.starts_with(kBom) ? Text.substr(kBom.size()) : Text;
}

void CheckFileText(std::string_view Text, std::string_view Place, Int64 MostBytes) {
  if (static_cast<Int64>(Text.size()) > MostBytes) {
    throw LimitError(Fault{"limit", std::string(Place),
                           Joined("has ", Text.size(), " bytes, at most ", MostBytes, " are possible"), ""});
  }
  if (const std::optional<std::size_t> bad = FindBadUtf8(Text)) {
    throw InputError(Fault{"encoding", std::string(Place), Joined("is not UTF-8 at ", LineAndColumn(Text, *bad)), ""});
  }
}

}  // namespace platenest::detail

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

// Small tools on UTF-8 texts and on numbers as text. None of them depends on the locale.
namespace platenest::detail {

// Appends V in the shortest form that reads back the same: 4, 0.1, 2440.5, 1e+20. Negative zero becomes 0. V is finite.
void AppendNumber(std::string& Out, double V);
PLATENEST_API std::string NumberText(double V);

inline void AppendPart(std::string& Out, std::string_view Part) {
  Out += Part;
}
inline void AppendPart(std::string& Out, double Part) {
  AppendNumber(Out, Part);
}
void AppendPart(std::string& Out, std::int64_t Part);
void AppendPart(std::string& Out, std::uint64_t Part);
inline void AppendPart(std::string& Out, int Part) {
  AppendPart(Out, std::int64_t{Part});
}

// One text of texts and numbers.
template <class... Parts>
std::string Joined(const Parts&... Items) {
  std::string out;
  (AppendPart(out, Items), ...);
  return out;
}

// The finite number that the whole of Text states, with an optional sign; nothing for any other text.
PLATENEST_API std::optional<double> NumberFromText(std::string_view Text);

// Appends Text with control characters as JSON escapes, and quotation mark and backslash too if Quotes.
void AppendEscaped(std::string& Out, std::string_view Text, bool Quotes);

// Text in quotation marks and on one line, cut after some 40 characters.
PLATENEST_API std::string Quoted(std::string_view Text);

// The number of Unicode characters; Text is UTF-8.
int CharacterCount(std::string_view Text);
bool HasControlCharacter(std::string_view Text);

// The position of the first byte that does not belong to a UTF-8 character, or nothing.
PLATENEST_API std::optional<std::size_t> FindBadUtf8(std::string_view Text);

// "line 2, column 5" of a byte, both counted from 1, columns in characters; a byte-order mark does not count.
std::string LineAndColumn(std::string_view Text, std::size_t Position);

// The known word that Word is a slip of (by Damerau-Levenshtein distance), as ", did you mean `x`?"; empty if there is
// none.
PLATENEST_API std::string NearMiss(std::string_view Word, std::span<const std::string_view> Known);

// "a, b, c"
std::string Listed(std::span<const std::string_view> Words);

std::string_view WithoutBom(std::string_view Text);

// Raises LimitError for a text that is larger than a file may be, InputError for one that is not UTF-8.
void CheckFileText(std::string_view Text, std::string_view Place, Int64 MostBytes);

}  // namespace platenest::detail

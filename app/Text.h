#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

// Numbers and words as the program reads and writes them, the same in every locale.
namespace platenest {

// The whole text as a finite number with a point; nothing otherwise.
std::optional<double> ParseNumber(std::string_view Text);

std::string Shortest(double Value);  // in the fewest digits that read back the same, plain from 1e-6 to 1e15
std::string Fixed(double Value, int Decimals);

// One line that is safe on a terminal: control characters become \xHH.
std::string Printable(std::string_view Text);

// The candidate that Word was probably meant to be; empty if none is near.
std::string_view NearestWord(std::string_view Word, std::span<const std::string_view> Candidates);

// " (did you mean ...?)", or nothing.
std::string DidYouMean(std::string_view Word, std::span<const std::string_view> Candidates);

}  // namespace platenest

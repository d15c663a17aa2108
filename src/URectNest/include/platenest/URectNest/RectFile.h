#pragma once

#include <string>
#include <string_view>

#include "platenest/URectNest/RectRecords.h"

// A plain text form of a rectangle problem, for debugging: numbers with white space between them, a point as decimal
// mark whatever the locale of the host.
//
//   read:     plate width, plate height, then per rectangle: width, height, area, amount
//   written:  the same, but with a third number 1 behind the plate's
//
// Hence a written file does not read back: the 1 is taken for a width, everything after it shifts by one place, and
// the first amount is met by the text of an area.
namespace platenest {

// A text that is not what its form asks for: names the file, the line, what was expected and what was found.
class PLATENEST_API TInputError : public TNestError {
 public:
  using TNestError::TNestError;
  ~TInputError() override;
  const char* ClassName() const noexcept override;
};

// A file that cannot be read or written.
class PLATENEST_API TFileError : public TNestError {
 public:
  using TNestError::TNestError;
  ~TFileError() override;
  const char* ClassName() const noexcept override;
};

// Sets the plate, from (0, 0), and appends the rectangles; Idx is not in the file and stays 0. A number missing at the
// end counts as 0. A rectangle of width or height 0 is skipped together with these two numbers only, so a blank line at
// the end does no harm. Nothing happens when the file does not exist. Raises TInputError for what is no number, or no
// whole number where an amount is due, and TFileError; List and Plate are unchanged then.
PLATENEST_API void ReadFromFile(const std::string& FileName, TNestRectList& List, TVRect2D& Plate);

// The same from a text in memory; Name stands for the file in error texts.
PLATENEST_API void ReadRectsFromText(std::string_view Text, std::string_view Name, TNestRectList& List,
                                     TVRect2D& Plate);

// Six decimals for every length. An existing file is deleted first. Raises TArgumentError, before that, for sizes that
// are negative or not finite, and TFileError, also for a folder or a device; no part of a file is left behind then.
PLATENEST_API void WriteRectsToFile(const TNestRectList& List, const TVRect2D& Plate, const std::string& FileName);

}  // namespace platenest

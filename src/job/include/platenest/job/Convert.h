#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// Other forms of a demand: the text rectangle file and comma separated tables. All readers take the text of a file,
// UTF-8 with or without byte-order mark, lines ended by LF or CRLF, and its name for the places of faults:
// "demand.txt:7:amount". They raise InputError, LimitError and MemoryError like ParseJob. No state; safe on any thread.
namespace platenest {

// A text in another form and one English sentence for each thing that this form could not hold.
struct Converted {
  std::string Text;
  std::vector<std::string> Warnings;
};

// The text rectangle file: numbers between white space. First plate width and height, then `width height area amount`
// for each rectangle. A rectangle whose width or height is exactly 0 consists of these two numbers only and is passed
// over, and a number that is missing at the end reads as 0. Each token must be a number as a whole; the amount a whole
// one. The area is the worth of a copy and becomes `value` where it differs from width times height by more than six
// decimals can express. Rectangles that are all of one size and worth become one part in a job of kind One, others a
// job of kind Fill.
PLATENEST_API Job JobFromRectText(std::string_view Text, std::string_view FileName);

// The first plate and all parts. A part without limit gets as many copies as the plate's area allows. Raises the errors
// of CheckJob.
PLATENEST_API Converted JobToRectText(const Job& AJob);

// Tables with a header line, in any order of columns: id, width, height, amount, rotate, value, label for parts, id,
// radius, amount, label for parts of kind Circles, and id, width, height, count, cost, remnant for plates. Only the
// sizes are needed; an empty cell is an absent one, `null`
// means without limit. The separator is a semicolon if the header holds one, else a comma; with semicolons a number may
// have a decimal comma. Fields may be quoted. One apostrophe before =, +, - or @ (or before more apostrophes and one of
// these) is taken off, as PartsToCsv puts it there. Kind decides what an absent amount means.
PLATENEST_API std::vector<Part> PartsFromCsv(std::string_view Text, std::string_view FileName, JobKind Kind);
PLATENEST_API std::vector<Plate> PlatesFromCsv(std::string_view Text, std::string_view FileName);

// A job from a table of parts: of kind Circles if it has a column radius and neither width nor height, else of kind Job
// on several plate kinds, else Fill, or One for a single part.
PLATENEST_API Job JobFromCsv(std::string_view Parts, std::string_view FileName, const std::vector<Plate>& Plates);

// Comma separated, LF, decimal points. A text that a spreadsheet would take for a formula gets an apostrophe. Raises
// InputError for a polygon, and for circles among others.
PLATENEST_API std::string PartsToCsv(const std::vector<Part>& Parts);

// One line for each placement, with columns layout (counted from 1), plate, copies, part, rotated, x, y (the
// translation), left, bottom, right, top; in kind Circles layout, plate, copies, part, x, y (the centre), radius.
PLATENEST_API std::string ResultToCsv(const Result& AResult);

}  // namespace platenest

#include "Help.h"

#include <algorithm>

namespace platenest {

namespace {

constexpr std::string_view kPlacementConvention = R"(
Placement convention:
  A rectangle is stored once, unrotated, from (0,0) to (width, height), y up.
  "rotated" turns it a quarter turn counter-clockwise about the origin, then
  "trans" = [tx, ty] moves it. "box" repeats the outcome as left, bottom, right,
  top, for readers that want no convention.

      y                                 y
      ^                                 ^
      |   +-----------+ (tx+w, ty+h)    |   +-------+ (tx, ty+w)
      |   |           |                 |   |       |
      |   |           | h               |   |       | w
      |   | A         |                 |   |       |
      |   o-----------+                 |   |     A |
      |   trans   w                     |   +-------o
      |                                 |     h     trans
      +---------------------> x         +---------------------> x

      unrotated: trans is the           rotated: trans is the
      lower left corner                 lower right corner
)";

constexpr std::string_view kCircleConvention = R"(
Placements:
  A circle is stored with its "center" = [x, y] and "radius", y up, from the lower
  left corner of the whole plate.
)";

constexpr std::string_view kExitCodes = R"(
Exit codes:
  0    a checked result was written, complete or not (see its status)
  1    the same, but --require-all was given and demand is left; or check found
       faults; or label or sucker found no place
  2    wrong options
  3    wrong input: the message names the place
  4    input over a limit
  5    a file cannot be read or written
  6    not enough memory
  7    stopped before any result
  70   internal fault: no answer passed the check; a reproduction file is named
  130  second Ctrl-C
)";

constexpr std::string_view kOnePage = R"(
Answers how many parts of one size one plate takes, and where they lie. JOB is a
job file, - for standard input, or absent when --plate and --part say it all.
Options win over the job file, and the result repeats what was in force.

The result goes to standard output as JSON, and nothing else does. Ctrl-C stops
the search and writes the best answer so far; a second one leaves at once.
)";
constexpr std::string_view kOneExamples = R"(
Examples:
  platenest one --plate 2440x1220 --part 300x200 --gap 5 --svg out/
  platenest one panel.json -o result.json
)";

constexpr std::string_view kFillPage = R"(
Fills one plate with parts of many sizes, so that the placed copies are worth most:
by their area, or by the value that a part states. JOB is a job file, - for standard
input, or absent when --plate and --parts say it all. Options win over the job file,
and the result repeats what was in force. Parts with rotate none keep their turn; a
method that cannot keep that is refused.

auto tries smart and raster first, then rskf and bigfirst, with and without turning,
then rounds of them that the seed varies, and keeps the best answer that passed the
check, so more time never gives less. It ends early where an upper bound proves the
answer best. Ctrl-C stops the search and writes the best answer so far; a second one
leaves at once.
)";
constexpr std::string_view kFillExamples = R"(
Examples:
  platenest fill --plate 3000x1500 --parts demand.csv --gap 4 --svg out/
  platenest fill cabinet.json --method smart -o filled.json
)";

constexpr std::string_view kJobPage = R"(
Cuts a whole demand out of a stock of plates: as few plates, or as cheap ones, as it
can, remnants first. JOB is a job file, - for standard input, or absent when --plates
(or --plate, as many as needed) and --parts say it all. Options win over the job file,
and the result repeats what was in force. Parts with rotate none keep their turn. The
answer is a list of layouts with the number of plates cut by each, what is left with
its reason, and lower bounds on plates and cost that hold whatever the search found.

auto fills a plate and repeats it while the demand lasts (repeat), takes plates apart
and fills them anew (rounds), goes on with strips of corrected values (svc), column
generation (cg) and rounds until the time limit, and keeps the best answer that passed
the check: least unplaced area, least plate cost, fewest plates, emptiest last plate.
Where a bound proves that nothing costs less it ends early, after a moment for fewer
plates and an emptier last one. Ctrl-C stops the search and writes the best answer so
far; a second one leaves at once.
)";
constexpr std::string_view kJobExamples = R"(
Examples:
  platenest job order.json --time-limit 5 --svg out/
  platenest job --plates plates.csv --parts demand.csv --gap 4 -o plan.json
)";

constexpr std::string_view kCirclesPage = R"(
Lays circles of one or several sizes on one plate or many, remnants first. JOB is a
job file, - for standard input, or absent when --plate (or --plates) and --radius
(or --parts, a table with a column radius) say it all. A --radius without --amount
stands for as many circles as one plate takes; where all amounts are told, --plate is
one of as many plates as needed. Options win over the job file, and the result
repeats what was in force. Circles may touch the plate's edge, unless a --margin
keeps it clear.

pattern lays circles of one size in rows and blocks, by closed forms and without
search; pack puts circles of any sizes one by one into the tightest corner; auto does
both and keeps the best answer that passed the check. For circles of one size Oler's
bound says how many no answer can exceed. Ctrl-C stops the search and writes the best
answer so far; a second one leaves at once.
)";
constexpr std::string_view kCirclesExamples = R"(
Examples:
  platenest circles --plate 1000x600 --radius 40 --gap 3 --svg out/
  platenest circles flanges.json --time-limit 2 -o plan.json
)";

constexpr std::string_view kNfpPage = R"(
Works out where a part may lie beside another one: the no-fit polygon, which the
reference point (origin) of the moving part must not enter, or with --inside the
region in which it keeps the part within the fixed one, say a plate with holes.
JOB is a job file of kind nfp, or - for standard input. It names a fixed and a
moving part, or lists of them, or none for all ordered pairs. Options win over it.

Stop and time limit are looked at between two pairs. Each answer states the
quality that it really has. No path at all, with --inside, means no place.
)";
constexpr std::string_view kNfpExamples = R"(
Examples:
  platenest nfp brackets.json --svg out/
  platenest nfp plate.json --inside --quality complete -o region.json
)";

constexpr std::string_view kArrayPage = R"(
Works out two vectors that repeat a part: copies moved by whole multiples of the
two keep the gap from each other. JOB is a job file of kind array, or - for
standard input; options win over it. The first vector goes along x or y, both
along their axes (xy), or wherever copies lie densest (free).

With --separate copies along an axis pass the whole extent of the part instead of
reaching into its hollows. The answer states the area of the lattice cell and how
much of it the part fills.
)";
constexpr std::string_view kArrayExamples = R"(
Examples:
  platenest array l-shape.json --svg out/
  platenest array l-shape.json --along x --gap 5 -o vectors.json
)";

constexpr std::string_view kLabelPage = R"(
Works out where a label fits in a part, clear of its inner lines, and how much
margin it has all round: upright if it can, else turned by a quarter about its own
centre. JOB is a job file of kind label, or - for standard input; options win over
it. The label stands from (0,0); "move" of the answer takes it to its place, "box"
repeats where that is. Without a place "found" is false and the exit code is 1.
)";
constexpr std::string_view kLabelExamples = R"(
Examples:
  platenest label cover-label.json --svg out/
  platenest label cover-label.json --label 18x6 --offset 1 -o label.json
)";

constexpr std::string_view kSuckerPage = R"(
Works out where a round gripper holds a part: at the part's centroid if the disc
lies inside there, else as near to it as possible. JOB is a job file of kind
sucker, or - for standard input; options win over it. Without a place "found" is
false and the exit code is 1.
)";
constexpr std::string_view kSuckerExamples = R"(
Examples:
  platenest sucker cover-gripper.json --svg out/
  platenest sucker cover-gripper.json --radius 4.5 -o gripper.json
)";

constexpr std::string_view kCheckPage = R"(
Verifies a result against its job by code of its own: plate, margin, gap, amounts,
stock, locked turns, and every number that the result states about itself. Faults
stand on standard error with their place in the result. An answer that was found
with options that won over the job file is checked with the same options.
)";
constexpr std::string_view kCheckExamples = R"(
Examples:
  platenest check panel.json result.json
  platenest check panel.json result.json --require-all
)";

constexpr std::string_view kConvertPage = R"(
Reads INPUT and writes OUTPUT, in the forms that their endings name: .json for a
job, .csv for a table of parts, .txt for the text rectangle file with two numbers
on its first line. A list of one size becomes a job of kind one, of several sizes
fill, a table with a column radius one of kind circles. Options go into the job that is written.
)";
constexpr std::string_view kConvertExamples = R"(
Examples:
  platenest convert demand.txt demand.json --gap 5
  platenest convert demand.csv demand.json --plate 2440x1220
)";

constexpr std::string_view kSchemaPage = R"(
Prints the JSON Schema (draft 2020-12) of the job form or of the result form.
)";
constexpr std::string_view kSchemaExamples = R"(
Examples:
  platenest schema job
  platenest schema result -o result.schema.json
)";

struct Page {
  std::string_view Text;
  std::string_view Examples;
};

Page PageOf(Command Id) {
  switch (Id) {
    case Command::One:
      return {kOnePage, kOneExamples};
    case Command::Fill:
      return {kFillPage, kFillExamples};
    case Command::Job:
      return {kJobPage, kJobExamples};
    case Command::Circles:
      return {kCirclesPage, kCirclesExamples};
    case Command::Nfp:
      return {kNfpPage, kNfpExamples};
    case Command::Array:
      return {kArrayPage, kArrayExamples};
    case Command::Label:
      return {kLabelPage, kLabelExamples};
    case Command::Sucker:
      return {kSuckerPage, kSuckerExamples};
    case Command::Check:
      return {kCheckPage, kCheckExamples};
    case Command::Convert:
      return {kConvertPage, kConvertExamples};
    case Command::Schema:
      return {kSchemaPage, kSchemaExamples};
  }
  return {};
}

std::string Column(std::string_view First, std::size_t Width, std::string_view Second) {
  std::string line(2, ' ');
  line += First;
  line.append(First.size() < Width ? Width - First.size() : 1, ' ');
  line += Second;
  line += '\n';
  return line;
}

std::string OptionList(Command Id) {
  static constexpr std::string_view kTitles[] = {"The job", "The run", "Output", "Messages"};
  std::string text;
  const OptionRow* former = nullptr;
  for (const OptionRow& row : OptionTable()) {
    if (!Takes(Id, row)) continue;
    if (former == nullptr || former->Group != row.Group) {
      text.append(1, '\n').append(kTitles[static_cast<std::size_t>(row.Group)]).append(":\n");
    }
    former = &row;
    text += Column(std::string(row.Name) + (row.Value.empty() ? "" : " ") + std::string(row.Value), 22, row.Text);
  }
  return text;
}

}  // namespace

std::string OverviewHelp() {
  std::string text =
      "Usage: platenest COMMAND [JOB] [options]\n\nTwo-dimensional nesting on sheet and plate.\n\nCommands:\n";
  for (const CommandRow& row : CommandTable()) {
    text += Column(std::string(row.Name) + " " + std::string(row.Positionals), 22, row.Purpose);
  }
  text += "\nplatenest COMMAND --help tells the options of a command. Numbers use a point in\nevery locale.\n";
  return text.append(kOneExamples).append(kExitCodes).append(kPlacementConvention);
}

std::string CommandHelp(Command Id) {
  const CommandRow& row = RowOf(Id);
  const Page page = PageOf(Id);
  std::string text = "Usage: platenest " + std::string(row.Name) + " " + std::string(row.Positionals) + " [options]\n";
  text.append(page.Text).append(OptionList(Id)).append(page.Examples);
  return text.append(Id == Command::Circles ? kCircleConvention : kPlacementConvention);
}

}  // namespace platenest

#include "CommandTable.h"

namespace platenest {

namespace {

constexpr CommandRow kCommands[] = {
    {Command::One, "one", "[JOB]", 0, 1, "how many of one size on one plate"},
    {Command::Fill, "fill", "[JOB]", 0, 1, "best use of one plate, many sizes"},
    {Command::Job, "job", "[JOB]", 0, 1, "a whole demand over a stock of plates"},
    {Command::Circles, "circles", "[JOB]", 0, 1, "circles of one or several sizes, one or many plates"},
    {Command::Nfp, "nfp", "JOB", 1, 1, "no-fit polygons, or the regions where parts fit inside others"},
    {Command::Array, "array", "JOB", 1, 1, "two vectors that repeat a part"},
    {Command::Label, "label", "JOB", 1, 1, "where a label fits in a part, with its margin"},
    {Command::Sucker, "sucker", "JOB", 1, 1, "where a round gripper holds a part"},
    {Command::Check, "check", "JOB RESULT", 2, 2, "is this result valid for this job"},
    {Command::Convert, "convert", "INPUT OUTPUT", 2, 2, "CSV, text rectangle file and JSON into each other"},
    {Command::Schema, "schema", "job|result", 1, 1, "print a JSON Schema"},
};

constexpr std::uint16_t Bit(Command Id) {
  return static_cast<std::uint16_t>(1U << static_cast<unsigned>(Id));
}
constexpr std::uint16_t kOne = Bit(Command::One);
constexpr std::uint16_t kReaders = Bit(Command::Check) | Bit(Command::Convert);
constexpr std::uint16_t kOfPart = Bit(Command::Array) | Bit(Command::Label) | Bit(Command::Sucker);
constexpr std::uint16_t kFill = Bit(Command::Fill);
constexpr std::uint16_t kJob = Bit(Command::Job);
constexpr std::uint16_t kCircles = Bit(Command::Circles);
constexpr std::uint16_t kLayouts = kOne | kFill | kJob | kCircles;
constexpr std::uint16_t kRuns = kLayouts | Bit(Command::Nfp) | kOfPart;
constexpr std::uint16_t kOneSize = kOne | kReaders;
constexpr std::uint16_t kRects = kLayouts | kReaders;
constexpr std::uint16_t kPairs = Bit(Command::Nfp) | kReaders;
constexpr std::uint16_t kArrays = Bit(Command::Array) | kReaders;
constexpr std::uint16_t kLabels = Bit(Command::Label) | kReaders;
constexpr std::uint16_t kJobs = kRuns | kReaders;
constexpr std::uint16_t kAll = kJobs | Bit(Command::Schema);

using enum OptionGroup;
// Where an option has several rows each command takes one of them.
constexpr OptionRow kOptions[] = {
    {"--plate", "WxH", Job, kRects, "size of the plate, for example 2440x1220"},
    {"--plates", "FILE", Job, kJob | kCircles | kReaders, "the plates as a CSV table, in place of those of the job"},
    {"--parts", "FILE", Job, kFill | kJob | kCircles | Bit(Command::Check),
     "the parts as a CSV table, in place of those of the job"},
    {"--part", "WxH", Job, kOneSize, "size of the part, for example 300x200"},
    {"--amount", "N", Job, kOneSize | kCircles, "copies of the part; without it as many as fit"},
    {"--gap", "LENGTH", Job, kRects | kArrays, "least distance between two parts (default 0)"},
    {"--margin", "LENGTHS", Job, kRects, "kept free at the plate's edges: one number, or left,bottom,right,top"},
    {"--fixed", "ID", Job, kPairs, "the part that stands still; without it all, one after the other"},
    {"--moving", "ID", Job, kPairs, "the part that moves; without it all, one after the other"},
    {"--inside", "", Job, kPairs, "where the moving part lies within the fixed one"},
    {"--quality", "NAME", Job, kPairs, "convex, concave, complete or exact (default complete)"},
    {"--of", "ID", Job, kOfPart | kReaders, "the part that is meant; needless if there is only one"},
    {"--along", "NAME", Job, kArrays, "where the vectors go: x, y, xy or free (default free)"},
    {"--separate", "", Job, kArrays, "copies along an axis do not reach into the part's hollows"},
    {"--label", "WxH", Job, kLabels, "size of the label"},
    {"--offset", "LENGTH", Job, kLabels, "least margin all round the label (default 0)"},
    {"--radius", "LENGTH", Job, kCircles, "radius of the circles"},
    {"--radius", "LENGTH", Job, Bit(Command::Sucker), "radius of the gripper"},
    {"--radius", "LENGTH", Job, kReaders, "radius of the circles, or of the gripper"},
    {"--units", "NAME", Job, kJobs, "mm, cm, m, in or none; a name only, nothing is converted (default mm)"},
    {"--method", "NAME", Run, kOne, "auto (default), strip, fiveblock or trim"},
    {"--method", "NAME", Run, kFill, "auto (default), smart, raster, rskf or bigfirst"},
    {"--method", "NAME", Run, kJob, "auto (default), repeat, svc or cg"},
    {"--method", "NAME", Run, kCircles, "auto (default), pattern or pack"},
    {"--method", "NAME", Run, kReaders, "one of the methods of the job's kind"},
    {"--time-limit", "SECONDS", Run, kJobs, "time for the search (default 60, 0 for none)"},
    {"--seed", "N", Run, kJobs, "start of the random numbers (default 1)"},
    {"--threads", "N", Run, kJobs, "threads that work (default: up to 4)"},
    {"--memory-limit", "SIZE", Run, kJobs, "bytes, or with K, M or G (default 1G)"},
    {"--deterministic", "", Run, kJobs, "the same bytes for the same job and seed, on any machine load"},
    {"-o", "FILE", Output, kRuns | Bit(Command::Schema), "write to FILE instead of standard output"},
    {"--svg", "DIR", Output, kRuns, "a picture of each answer, for example DIR/layout-001-x1.svg"},
    {"--csv", "FILE", Output, kLayouts, "the placements as a table"},
    {"--require-all", "", Output, kLayouts | Bit(Command::Nfp) | Bit(Command::Check),
     "exit with 1 when demand is left: copies, or pairs"},
    {"--quiet", "", Messages, kAll, "nothing on standard error but errors"},
    {"--json-progress", "", Messages, kAll, "progress and errors as one JSON object a line"},
    {"--no-color", "", Messages, kAll, "no colours; the variable NO_COLOR does the same"},
    {"--help", "", Messages, kAll, "this page"},
    {"--version", "", Messages, kAll, "the version"},
};

}  // namespace

std::span<const CommandRow> CommandTable() {
  return kCommands;
}

std::span<const OptionRow> OptionTable() {
  return kOptions;
}

const CommandRow& RowOf(Command Id) {
  return kCommands[static_cast<std::size_t>(Id)];
}

}  // namespace platenest

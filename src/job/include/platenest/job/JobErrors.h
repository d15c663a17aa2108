#pragma once

#include <string>
#include <vector>

#include "platenest/foundation/Errors.h"

// What the facade raises. Whatever went wrong below, a caller of run() or of the readers sees one of these kinds, with
// the place in the job. Nothing aborts the process and nothing is printed.
namespace platenest {

// One fault and its place.
struct Fault {
  // A word for programs: syntax, encoding, type, range, choice (a name that is not known), id, missing, unknown-key,
  // duplicate-key, duplicate-id, shape (a polygon that encloses nothing or crosses itself), entries (too few or too
  // many for the kind), conflict (members that exclude each other), limit, memory.
  std::string Code;
  std::string
      Place;  // a JSON Pointer ("/parts/3/amount"), or file, line and column name of a table ("demand.csv:7:amount")
  std::string Text;    // one English sentence without a full stop: "must be a whole number of at least 1, found -2"
  std::string Detail;  // the core's own message where there is one, in its own language
};

// Base of all facade errors. At most kMaxFaults are kept; the first one stands in what(), after its place.
class PLATENEST_API JobError : public TNestError {
 public:
  static constexpr int kMaxFaults = 20;

  explicit JobError(std::vector<Fault> Faults);
  explicit JobError(Fault Single);
  ~JobError() override;
  const char* ClassName() const noexcept override;
  const std::vector<Fault>& Faults() const noexcept { return FFaults; }

 private:
  std::vector<Fault> FFaults;
};

#define PLATENEST_JOB_ERROR(Name)                    \
  class PLATENEST_API Name : public JobError {       \
   public:                                           \
    using JobError::JobError;                        \
    ~Name() override;                                \
    const char* ClassName() const noexcept override; \
  }

PLATENEST_JOB_ERROR(InputError);    // wrong input; exit status 3
PLATENEST_JOB_ERROR(LimitError);    // input over a stated limit; 4
PLATENEST_JOB_ERROR(FileError);     // a file cannot be read or written; 5
PLATENEST_JOB_ERROR(MemoryError);   // not enough memory; 6
PLATENEST_JOB_ERROR(StoppedError);  // stopped before any result; 7
PLATENEST_JOB_ERROR(CheckError);    // no answer passed the built-in checker, an internal fault; 70

#undef PLATENEST_JOB_ERROR

}  // namespace platenest

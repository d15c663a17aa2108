#pragma once

#include <string>
#include <string_view>

#include "platenest/job/JobErrors.h"

namespace platenest {

// What the program says on standard error. Every message is one line; failures to write it are nobody's business.
class Messages {
 public:
  struct Style {
    bool Quiet = false;  // errors only
    bool Json = false;   // one JSON object a line and nothing else
    bool Color = false;
  };

  explicit Messages(Style AStyle) : FStyle(AStyle) {}

  // The file that is being read or answered: the first word of an error with a place inside a document.
  void SetSource(std::string Source) { FSource = std::move(Source); }
  const std::string& Source() const { return FSource; }

  // While a document is being read its faults are its own, whatever options would replace in it later.
  void SetReading(bool Reading) { FReading = Reading; }
  bool IsReading() const { return FReading; }

  const Style& GetStyle() const { return FStyle; }

  // platenest: error: job.json: /parts/3/amount: must be ..., found -2
  void Error(const Fault& AFault) const;

  // Text for people: nothing in the quiet and the JSON style.
  void Note(std::string_view Text) const;

 private:
  std::string PlaceOf(const Fault& AFault) const;

  Style FStyle;
  std::string FSource;
  bool FReading = false;
};

// Whether standard error is a terminal that takes colours and rewritten lines.
bool StandardErrorIsTerminal();

// Whether the environment allows colours: NO_COLOR is absent or empty.
bool ColorAllowed();

}  // namespace platenest

#include "Trouble.h"

#include <new>

#include "platenest/foundation/Errors.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

void TTrouble::Try(const std::function<void()>& Step) {
  try {
    Step();
  } catch (const JobError&) {
    throw;
  } catch (const TNestError& error) {
    FText = error.Text();
  } catch (const std::bad_alloc&) {
    FLacksMemory = true;
  }
}

void TTrouble::Raise() const {
  if (FLacksMemory) throw std::bad_alloc();
  if (!FText.empty()) throw CheckError({"check", "", "no answer passed the layout check", FText});
}

}  // namespace platenest::detail

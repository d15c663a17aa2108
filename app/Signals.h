#pragma once

#include <csignal>

#include "platenest/foundation/StopToken.h"

// The first SIGINT or SIGTERM asks the run to stop, the second one leaves at once.
namespace platenest {

// SIGPIPE and SIGXFSZ are ignored, so that a closed pipe or a full quota becomes an ordinary write error.
void InstallSignalHandlers();

const TStopToken& SignalStop() noexcept;

// Waits until Fd can be read without blocking. False when a stop was asked for, before or meanwhile; no signal is
// missed between the question and the wait.
bool WaitReadable(int Fd);

// Holds both signals back on this thread while a file is half written.
class SignalBlock {
 public:
  SignalBlock();
  ~SignalBlock();
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;
  const sigset_t& Former() const { return FFormer; }

 private:
  sigset_t FFormer;
};

}  // namespace platenest

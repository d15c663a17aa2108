#include "Signals.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "Program.h"

namespace platenest {

namespace {

TStopToken stopToken;
static_assert(std::atomic<bool>::is_always_lock_free, "the handler may touch it");

extern "C" void OnStopSignal(int) {
  if (stopToken.StopRequested()) _exit(kExitInterrupted);
  stopToken.RequestStop();
}

}  // namespace

void InstallSignalHandlers() {
  struct sigaction stop = {};
  stop.sa_handler = OnStopSignal;  // without SA_RESTART: a waiting read or open returns
  sigemptyset(&stop.sa_mask);
  sigaction(SIGINT, &stop, nullptr);
  sigaction(SIGTERM, &stop, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

const TStopToken& SignalStop() noexcept {
  return stopToken;
}

bool WaitReadable(int Fd) {
  const SignalBlock block;
  pollfd item = {Fd, POLLIN, 0};
  while (!stopToken.StopRequested()) {
    const int ready = ppoll(&item, 1, nullptr, &block.Former());
    if (ready > 0 || (ready < 0 && errno != EINTR)) return true;  // what is wrong, the read will tell
  }
  return false;
}

SignalBlock::SignalBlock() {
  sigset_t both;
  sigemptyset(&both);
  sigaddset(&both, SIGINT);
  sigaddset(&both, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &both, &FFormer);
}

SignalBlock::~SignalBlock() {
  pthread_sigmask(SIG_SETMASK, &FFormer, nullptr);
}

}  // namespace platenest

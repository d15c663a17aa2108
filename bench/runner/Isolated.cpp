#include "Isolated.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>

namespace platenest::bench {

TCaseRecord RecordOf(const TNfpAnswer& Answer, const TNfpVerdict& Verdict) {
  TCaseRecord record;
  record.Fault = Verdict.Fault;
  record.Quality = Answer.Quality;
  record.Rung = RungOf(Answer.Statistics);
  record.Ladder = LadderOf(Answer.Statistics);
  record.Retries = static_cast<int>(Answer.Statistics.Retries);
  record.TrailHits = static_cast<int>(Answer.Statistics.TrailHits);
  record.Ms = Answer.Ms;
  std::snprintf(record.Text, sizeof record.Text, "%s", Verdict.Text.c_str());
  return record;
}

TCaseRecord RunIsolated(const std::function<TCaseRecord()>& Work, unsigned Seconds) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    alarm(Seconds);
    const TCaseRecord record = Work();
    _exit(write(ends[1], &record, sizeof record) == static_cast<ssize_t>(sizeof record) ? 0 : 1);
  }
  close(ends[1]);
  TCaseRecord record;
  const bool isComplete = read(ends[0], &record, sizeof record) == static_cast<ssize_t>(sizeof record);
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (isComplete) return record;
  record = {};
  const bool isLate = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
  record.Fault = isLate ? TNfpFault::Hang : TNfpFault::Crash;
  return record;
}

}  // namespace platenest::bench

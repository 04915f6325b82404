// Output under a temporary name until it is complete.  The hard part is a signal in between: its
// handler must find every temporary file and may call next to nothing.

#include "tools/support/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <utility>

#include "tools/support/command_error.h"
#include "tools/support/report.h"

namespace kzgis::tools {

std::string ending_of(const std::string& path) {
  const std::size_t dot = path.find_last_of("./");
  return dot != std::string::npos && path[dot] == '.' ? path.substr(dot + 1) : std::string();
}

// A list of them that a signal handler can walk: it changes only while the signals wait.
struct OutputFile::Unfinished {
  std::string path;
  std::string line;  // written when it is removed
  Unfinished* former = nullptr;

  static inline std::atomic<Unfinished*> latest{nullptr};
  static_assert(std::atomic<Unfinished*>::is_always_lock_free);
};

namespace {

constexpr std::array kEndingSignals{SIGHUP, SIGINT, SIGPIPE, SIGTERM};

sigset_t ending_signals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal_number : kEndingSignals) sigaddset(&set, signal_number);
  return set;
}

/// Keeps the ending signals waiting while it lives.
class SignalsWait {
 public:
  SignalsWait() {
    const sigset_t set = ending_signals();
    sigprocmask(SIG_BLOCK, &set, &former_);
  }
  ~SignalsWait() { sigprocmask(SIG_SETMASK, &former_, nullptr); }
  SignalsWait(const SignalsWait&) = delete;
  SignalsWait& operator=(const SignalsWait&) = delete;

 private:
  sigset_t former_{};
};

}  // namespace

/// Calls nothing that a signal handler may not.
void OutputFile::remove_unfinished(int signal_number) {
  const Unfinished* const latest = Unfinished::latest.exchange(nullptr);
  for (const Unfinished* file = latest; file != nullptr; file = file->former) {
    ::unlink(file->path.c_str());
  }
  // Files that are open together are parts of one output, and their lines the same.
  if (latest != nullptr && ::write(STDERR_FILENO, latest->line.data(), latest->line.size()) < 0) {
    // Nobody is left to be told.
  }
  // The handler is in place for one signal: this one, delivered on return, ends the process.
  ::raise(signal_number);
}

/// Installs the handler, once, for signals that would end the process.
void OutputFile::handle_signals() {
  static bool handled = false;
  if (std::exchange(handled, true)) return;
  struct sigaction action {};
  action.sa_handler = &OutputFile::remove_unfinished;
  action.sa_mask = ending_signals();
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  const auto set_unless_changed = [](int signal_number, const struct sigaction& wanted) {
    // One that the caller ignores, as under nohup, stays ignored.
    struct sigaction former {};
    if (::sigaction(signal_number, nullptr, &former) == 0 && former.sa_handler == SIG_DFL) {
      ::sigaction(signal_number, &wanted, nullptr);
    }
  };
  for (const int signal_number : kEndingSignals) set_unless_changed(signal_number, action);
  // The write then fails, and is reported like any other.
  action.sa_handler = SIG_IGN;
  set_unless_changed(SIGXFSZ, action);
}

/// Makes the temporary file and lets the signal handler know of it.  Returns its descriptor,
/// or -1, and errno says why.
int OutputFile::make_temporary(const std::string& whole) {
  const std::string over_progress = ::isatty(STDERR_FILENO) != 0 ? "\r\x1b[K" : "";
  auto unfinished = std::make_unique<Unfinished>(
      Unfinished{path_.substr(0, path_.rfind('/') + 1) + ".kzgis.partXXXXXX",
                 over_progress + report_line(whole + ": not written: stopped by a signal")});
  const SignalsWait until_it_is_linked;
  const int descriptor = ::mkostemp(unfinished->path.data(), O_CLOEXEC);
  if (descriptor < 0) return -1;
  unfinished_ = std::move(unfinished);
  unfinished_->former = Unfinished::latest.exchange(unfinished_.get());
  // Private so far: the rights become those of any new file.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(descriptor, 0666 & ~mask);
  return descriptor;
}

/// The temporary file is gone, by name at least.
void OutputFile::strike_out() {
  const SignalsWait until_it_is_unlinked;
  if (Unfinished::latest == unfinished_.get()) {
    Unfinished::latest = unfinished_->former;
  } else {
    Unfinished* later = Unfinished::latest;
    while (later->former != unfinished_.get()) later = later->former;
    later->former = unfinished_->former;
  }
  unfinished_.reset();
}

OutputFile::OutputFile(std::string path, const std::string& whole) : path_(std::move(path)) {
  if (to_standard_output()) return;
  handle_signals();
  struct stat info {};
  const bool is_new = ::stat(path_.c_str(), &info) != 0;
  int descriptor = -1;
  if (!is_new && !S_ISREG(info.st_mode)) {
    // A device or a pipe cannot be replaced by a rename: it is written as it stands.
    descriptor = ::open(path_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  } else if (!is_new || (errno == ENOENT && !path_.empty())) {
    descriptor = make_temporary(whole);
  }
  if (descriptor < 0) throw CommandError(path_ + ": cannot be written: " + std::strerror(errno));
  buffer_.own(descriptor);
}

OutputFile::~OutputFile() {
  if (unfinished_ == nullptr) return;
  std::remove(unfinished_->path.c_str());
  strike_out();
}

std::ostream& OutputFile::stream() { return to_standard_output() ? std::cout : file_; }

void OutputFile::finish() {
  if (std::exchange(finished_, true)) return;
  int error = 0;
  if (to_standard_output()) {
    errno = 0;
    std::cout.flush();
    error = std::cout ? 0 : errno;
  } else {
    error = buffer_.close();
  }
  if (error == 0 && stream()) return;
  const std::string name = to_standard_output() ? "standard output" : path_;
  const std::string reason = error != 0 ? std::strerror(error) : "the write failed";
  throw CommandError(name + ": could not be written whole: " + reason);
}

/// Returns false, and errno says why, when the file keeps its temporary name.
bool OutputFile::rename() {
  if (unfinished_ == nullptr) return true;
  if (std::rename(unfinished_->path.c_str(), path_.c_str()) != 0) return false;
  strike_out();
  return true;
}

void OutputFile::commit() {
  finish();
  const SignalsWait until_it_is_known_which;
  if (!rename()) throw CommandError(path_ + ": cannot be written: " + std::strerror(errno));
}

void OutputFile::commit_together(std::deque<OutputFile>& files) {
  for (OutputFile& file : files) file.finish();
  const SignalsWait until_all_are_there;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i].rename()) continue;
    std::string why = files[i].path_ + ": cannot be written: " + std::strerror(errno);
    if (i > 0) why += "; what was written up to " + files[i - 1].path_ + " stays";
    throw CommandError(why);
  }
}

}  // namespace kzgis::tools

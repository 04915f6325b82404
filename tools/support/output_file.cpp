#include "tools/support/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
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

/// Makes the temporary file known to the signal handler.
void OutputFile::enlist(const std::string& whole) {
  const std::string over_progress = ::isatty(STDERR_FILENO) != 0 ? "\r\x1b[K" : "";
  unfinished_ = std::make_unique<Unfinished>(Unfinished{
      temporary_path_, over_progress + report_line(whole + ": not written: stopped by a signal")});
  const SignalsWait until_it_is_linked;
  unfinished_->former = Unfinished::latest.exchange(unfinished_.get());
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
  if (path_ == "-") return;
  // A device or a pipe cannot be replaced by a rename: it is written as it stands.
  struct stat info {};
  const bool replaceable = ::stat(path_.c_str(), &info) != 0 || S_ISREG(info.st_mode);
  temporary_path_ = replaceable ? path_ + ".part" + std::to_string(::getpid()) : path_;
  handle_signals();
  if (replaceable) enlist(whole);
  file_.open(temporary_path_, std::ios::binary | std::ios::trunc);
  if (!file_) {
    const int why = errno;
    if (unfinished_ != nullptr) strike_out();
    throw CommandError(path_ + ": cannot be written: " + std::strerror(why));
  }
}

OutputFile::~OutputFile() {
  if (unfinished_ == nullptr) return;
  std::remove(temporary_path_.c_str());
  strike_out();
}

std::ostream& OutputFile::stream() { return to_standard_output() ? std::cout : file_; }

void OutputFile::finish() {
  if (std::exchange(finished_, true)) return;
  const bool failed = !stream();
  errno = 0;
  if (failed && unfinished_ != nullptr) {
    // Streams forget why.  What is written into a file that is not kept tells it again.
    file_.clear();
    file_ << std::string(std::size_t{1} << 16U, ' ');
  }
  stream().flush();
  if (!to_standard_output()) file_.close();
  if (failed || !stream()) {
    const std::string name = to_standard_output() ? "standard output" : path_;
    const std::string reason = errno != 0 ? std::strerror(errno) : "the write failed";
    throw CommandError(name + ": could not be written whole: " + reason);
  }
}

/// Returns false, and errno says why, when the file keeps its temporary name.
bool OutputFile::rename() {
  if (unfinished_ == nullptr) return true;
  if (std::rename(temporary_path_.c_str(), path_.c_str()) != 0) return false;
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

// The bar on a terminal, and who feeds it.

#include "tools/support/progress.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace {

using kzgis::tools::LibraryProgress;
using kzgis::tools::Progress;

/// Standard error as a terminal, while it lives.
class Terminal {
 public:
  Terminal() : former_(::dup(STDERR_FILENO)) {
    int terminal = -1;
    opened_ = ::openpty(&master_, &terminal, nullptr, nullptr, nullptr) == 0;
    if (!opened_) return;
    ::dup2(terminal, STDERR_FILENO);
    ::close(terminal);
  }
  ~Terminal() {
    restore();
    if (opened_) ::close(master_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  bool opened() const { return opened_; }
  /// What was written to it.
  std::string text() {
    // A terminal hands on its text in pieces: this ends it.
    std::fputc('!', stderr);
    std::fflush(stderr);
    std::string read;
    std::array<char, 4096> bytes{};
    while (!read.ends_with('!')) {
      const ssize_t count = ::read(master_, bytes.data(), bytes.size());
      if (count <= 0) return read + " and nothing more";
      read.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return read.substr(0, read.size() - 1);
  }

 private:
  void restore() {
    if (former_ < 0) return;
    ::dup2(former_, STDERR_FILENO);
    ::close(former_);
    former_ = -1;
  }

  int former_;
  int master_ = -1;
  bool opened_ = false;
};

constexpr auto kLongerThanPatience = std::chrono::milliseconds(550);

TEST(Progress, ShowsAShareOnceWorkTakesLong) {
  Terminal terminal;
  if (!terminal.opened()) GTEST_SKIP() << "no terminals here";
  {
    Progress progress("reading", 8);
    progress.update(2);
    EXPECT_EQ(terminal.text(), "");
    std::this_thread::sleep_for(kLongerThanPatience);
    progress.update(4);
    EXPECT_EQ(terminal.text(), "\rreading [###############               ]  50%\033[K");
  }
  EXPECT_EQ(terminal.text(), "\r\033[K");
}

TEST(LibraryProgress, ShowsWhatTheLibraryReports) {
  Terminal terminal;
  if (!terminal.opened()) GTEST_SKIP() << "no terminals here";
  {
    const LibraryProgress progress("loading bank");
    std::this_thread::sleep_for(kLongerThanPatience);
    OMstatus_check(20, "africa.Map/cil.cbd", 0);
    EXPECT_EQ(terminal.text(), "\rloading bank [######                        ]  20%\033[K");
  }
  EXPECT_EQ(terminal.text(), "\r\033[K");
  // The handler is gone with the bar.
  OMstatus_check(50, "africa.Map/cil.cbd", 0);
  EXPECT_EQ(OMstatus_set_handler(nullptr, nullptr), nullptr);
}

}  // namespace

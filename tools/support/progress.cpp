// Drawing the bar, over itself, on the line where the cursor stands.

#include "tools/support/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace kzgis::tools {

namespace {

constexpr auto kPatience = std::chrono::milliseconds(500);
constexpr auto kRedraw = std::chrono::milliseconds(100);
constexpr int kBarColumns = 30;

}  // namespace

Progress::Progress(std::string label, std::uint64_t total, bool prints)
    : label_(std::move(label)),
      total_(total),
      next_draw_(std::chrono::steady_clock::now() + kPatience),
      terminal_(::isatty(STDERR_FILENO) == 1 && !(prints && ::isatty(STDOUT_FILENO) == 1)) {}

Progress::~Progress() {
  if (drawn_) std::fputs("\r\033[K", stderr);
}

void Progress::update(std::uint64_t done) {
  if (!terminal_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_draw_) return;
  next_draw_ = now + kRedraw;
  draw(done);
}

void Progress::draw(std::uint64_t done) {
  drawn_ = true;
  if (total_ == 0) {
    std::fprintf(stderr, "\r%s %llu\033[K", label_.c_str(), static_cast<unsigned long long>(done));
    return;
  }
  const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
  std::string bar(kBarColumns, ' ');
  std::fill_n(bar.begin(), static_cast<int>(share * kBarColumns), '#');
  std::fprintf(stderr, "\r%s [%s] %3d%%\033[K", label_.c_str(), bar.c_str(),
               static_cast<int>(share * 100.0));
}

LibraryProgress::LibraryProgress(std::string label, bool prints)
    : bar_(std::move(label), 100, prints),
      former_(OMstatus_set_handler(&LibraryProgress::show, this)) {}

LibraryProgress::~LibraryProgress() { OMstatus_set_handler(former_, nullptr); }

/// The library's own label names a file, and gives way to what the user asked for.
void LibraryProgress::show(int percent, const char* /*label*/, void* self) {
  static_cast<LibraryProgress*>(self)->bar_.update(
      static_cast<std::uint64_t>(std::max(0, percent)));
}

}  // namespace kzgis::tools

// A progress bar for people who wait.

#ifndef KZGIS_TOOLS_SUPPORT_PROGRESS_H
#define KZGIS_TOOLS_SUPPORT_PROGRESS_H

#include <kzgis/status.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace kzgis::tools {

/// Draws a bar on standard error once work has taken half a second, and wipes it at the
/// end.  Where standard error is no terminal it stays silent, and where the results go to
/// the same terminal too.
class Progress {
 public:
  /// @param label  what is going on
  /// @param total  the amount of work, in any unit; 0 when unknown: amounts are shown
  /// @param prints  the results go to standard output meanwhile
  Progress(std::string label, std::uint64_t total, bool prints = false);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Cheap enough for an inner loop.
  void update(std::uint64_t done);

 private:
  void draw(std::uint64_t done);

  std::string label_;
  std::uint64_t total_;
  std::chrono::steady_clock::time_point next_draw_;
  bool terminal_;
  bool drawn_ = false;
};

/// A bar that the library feeds while it lives: what the library reports to the handler of
/// kzgis/status.h, in percent of the work at hand, shows under the label given here.
class LibraryProgress {
 public:
  explicit LibraryProgress(std::string label, bool prints = false);
  ~LibraryProgress();
  LibraryProgress(const LibraryProgress&) = delete;
  LibraryProgress& operator=(const LibraryProgress&) = delete;

 private:
  static void show(int percent, const char* label, void* self);

  Progress bar_;
  OMstatus_handler former_;
};

}  // namespace kzgis::tools

#endif

// Output that appears whole or not at all.

#ifndef KZGIS_TOOLS_SUPPORT_OUTPUT_FILE_H
#define KZGIS_TOOLS_SUPPORT_OUTPUT_FILE_H

#include <deque>
#include <memory>
#include <ostream>
#include <string>

#include "tools/support/descriptor_buffer.h"

namespace kzgis::tools {

/// What stands behind the last dot of a file's name: "png"; empty without one.
std::string ending_of(const std::string& path);

/// A file written under a temporary name in its directory and renamed when complete, so
/// that a half-written one is never taken for the result; or standard output.
///
/// The temporary name is a new one (".kzgis.part" and six characters), so that nothing that
/// stands there is written to, nor through a link.
///
/// A signal that ends the process (hang-up, interrupt, broken pipe, termination) removes the
/// temporary files that are there, and says so in one line.  A file that reaches the process's
/// limit of size is an error like a full disk.
class OutputFile {
 public:
  /// Opens the temporary file; "-" is standard output.  Throws `CommandError`.
  ///
  /// @param whole  what the line on a signal calls the output that the file is a part of
  OutputFile(std::string path, const std::string& whole);
  explicit OutputFile(const std::string& path) : OutputFile(path, path) {}
  /// Removes the temporary file unless it was committed.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& stream();

  /// Flushes and closes: nothing can be written after it.  Throws `CommandError` when anything
  /// was not written.
  void finish();

  /// Finishes and renames.  Throws `CommandError`.
  void commit();

  /// Finishes all files, and only then renames them, so that a full disk or a signal leaves
  /// all or none.  Throws `CommandError`; when a rename fails, which names the file, and the
  /// last of those that had been renamed.
  static void commit_together(std::deque<OutputFile>& files);

 private:
  bool to_standard_output() const { return path_ == "-"; }
  bool rename();

  /// What a signal handler needs.
  struct Unfinished;
  int make_temporary(const std::string& whole);
  void strike_out();
  static void remove_unfinished(int signal_number);
  static void handle_signals();

  std::string path_;
  std::unique_ptr<Unfinished> unfinished_;  // until it has its name
  DescriptorBuffer buffer_;
  std::ostream file_{&buffer_};
  bool finished_ = false;
};

}  // namespace kzgis::tools

#endif

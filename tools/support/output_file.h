// Output that appears whole or not at all.

#ifndef KZGIS_TOOLS_SUPPORT_OUTPUT_FILE_H
#define KZGIS_TOOLS_SUPPORT_OUTPUT_FILE_H

#include <fstream>
#include <memory>
#include <ostream>
#include <string>

namespace kzgis::tools {

/// What stands behind the last dot of a file's name: "png"; empty without one.
std::string ending_of(const std::string& path);

/// A file written under a temporary name beside its own and renamed when complete, so
/// that a half-written one is never taken for the result; or standard output.
///
/// A signal that ends the process (hang-up, interrupt, broken pipe, termination) removes the
/// temporary file opened last, and says so in one line.  A file that reaches the process's
/// limit of size is an error like a full disk.
class OutputFile {
 public:
  /// Opens the temporary file; "-" is standard output.  Throws `CommandError`.
  explicit OutputFile(std::string path);
  /// Removes the temporary file unless `commit` was called.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& stream();

  /// Flushes, closes and renames.  Throws `CommandError` when anything was not written.
  void commit();

 private:
  bool to_standard_output() const { return temporary_path_.empty(); }

  /// What a signal handler needs.
  struct Unfinished;
  static void remove_unfinished(int signal_number);
  static void handle_signals();

  std::string path_;
  std::string temporary_path_;
  std::unique_ptr<const Unfinished> unfinished_;
  std::ofstream file_;
};

}  // namespace kzgis::tools

#endif

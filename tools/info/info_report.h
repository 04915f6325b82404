// What `kzgis info` finds out of a file, for people or for programs.

#ifndef KZGIS_TOOLS_INFO_INFO_REPORT_H
#define KZGIS_TOOLS_INFO_INFO_REPORT_H

#include <kzgis/box.h>

#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "tools/support/report.h"

namespace kzgis::tools {

/// One run of the subcommand.
///
/// For people, each kind of file prints its report on standard output as it goes, and what is
/// wrong with the file goes to standard error.  For programs, both go into one JSON object.
class InfoReport {
 public:
  using Json = nlohmann::ordered_json;

  InfoReport(std::string file, bool lists, bool json)
      : file_(std::move(file)), lists_(lists), json_(json) {}

  /// As the user gave it.
  const std::string& file() const { return file_; }
  /// Whether each record or segment has a line, or an object, of its own.
  bool lists() const { return lists_; }
  bool json() const { return json_; }
  Json& document() { return document_; }

  /// A thing that is wrong, with the file's name in front.
  void add_error(const std::string& line);
  /// Valid as long as this object.
  Complain receiver() {
    return [this](const std::string& line) { add_error(line); };
  }

  /// Writes what is not written yet.  Returns the exit code: 0 when nothing is wrong.
  int finish();

 private:
  std::string file_;
  bool lists_;
  bool json_;
  Json document_ = Json::object();
  Json errors_ = Json::array();
  Complaints complaints_;
};

/// {"min_x": ..., "min_y": ..., "max_x": ..., "max_y": ...}
InfoReport::Json box_object(const Box& box);

}  // namespace kzgis::tools

#endif

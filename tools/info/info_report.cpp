// One object to a run; what is no UTF-8 in a name is replaced, and what is no number is null.

#include "tools/info/info_report.h"

#include <iostream>

#include "tools/support/output_file.h"

namespace kzgis::tools {

void InfoReport::add_error(const std::string& line) {
  if (json_) {
    errors_.push_back(line);
  } else {
    complaints_.add(line);
  }
}

int InfoReport::finish() {
  const bool sound = errors_.empty() && complaints_.exit_code() == 0;
  if (json_) {
    document_["errors"] = std::move(errors_);
    std::cout << document_.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
  }
  OutputFile("-").commit();
  return sound ? 0 : 1;
}

InfoReport::Json box_object(const Box& box) {
  return {{"min_x", box.min_x}, {"min_y", box.min_y}, {"max_x", box.max_x}, {"max_y", box.max_y}};
}

}  // namespace kzgis::tools

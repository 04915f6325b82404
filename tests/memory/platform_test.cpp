// Texts, dates, path variables and progress without memory.

#include <cstdio>
#include <functional>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "kzgis/filetools.h"
#include "kzgis/status.h"
#include "kzgis/utdate.h"
#include "kzgis/utstring.h"
#include "memory/failing.h"

namespace {

/// An operation that makes a text longer, or throws and leaves it as it was.
Operation grows(const char* name, const std::function<void(UtString&)>& change) {
  return {name, 1, {kThrew}, [change] {
            UtString text("fifteen letters");
            try {
              change(text);
            } catch (const std::bad_alloc&) {
              if (!(text == "fifteen letters")) return -1L;
              throw;
            }
            return static_cast<long>(text.size());
          }};
}

std::vector<Operation> operations() {
  static const UtString other(kText);
  static const std::string standard(kText);
  return {
      {"UtString_FromText", 1, {kThrew}, [] { return static_cast<long>(UtString(kText).size()); }},
      {"UtString_FromString",
       1,
       {kThrew},
       [] { return static_cast<long>(UtString(standard).size()); }},
      {"UtString_Copy",
       1,
       {kThrew},
       [] {
         const UtString copy(other);
         return static_cast<long>(copy.size());
       }},
      grows("UtString_Assign", [](UtString& text) { text = kText; }),
      grows("UtString_AssignCopy", [](UtString& text) { text = other; }),
      grows("UtString_AppendCharacter", [](UtString& text) { text.append('c'); }),
      grows("UtString_AppendText", [](UtString& text) { text.append(kText); }),
      grows("UtString_AppendString", [](UtString& text) { text.append(other); }),
      grows("UtString_AddCharacter", [](UtString& text) { text += 'c'; }),
      grows("UtString_AddText", [](UtString& text) { text += kText; }),
      grows("UtString_AddString", [](UtString& text) { text += other; }),
      grows("UtString_Reserve", [](UtString& text) { text.reserve(1000); }),
      grows("UtString_Sum", [](UtString& text) { text = text + other; }),
      grows("UtString_SumWithText", [](UtString& text) { text = text + kText; }),
      grows("UtString_SumOfText", [](UtString& text) { text = kText + text; }),
      {"UtString_Others",
       0,
       {},
       [] {
         UtString text("Short");
         nowhere() << text.lower() << other;
         return long{text == "short" && !(text == other) && !text.empty()};
       }},
      {"UtDate",
       0,
       {},
       [] {
         const UtDate date(1987, 8, 1);
         nowhere() << date;
         return long{date.year()};
       }},
      {"OMstatus",
       0,
       {},
       [] {
         static int percent = 0;
         OMstatus_set_handler(
             [](int p, const char*, void* context) { *static_cast<int*>(context) = p; }, &percent);
         OMstatus_check(12, "what goes on", 0);
         OMstatus_set_handler(nullptr, nullptr);
         return long{percent};
       }},
      {"FILEmap_variables",
       2,
       {kThrew},
       [] {
         char buffer[1024];
         const char* const name = "$HOME/$NONE_OF_A_LONG_NAME<3>/a long name of a file";
         return long{FILEmap_variables(name, buffer) == buffer};
       }},
      {"FILEfopen",
       2,
       {kThrew, 0},
       [] {
         std::FILE* const file = FILEfopen(KZGIS_TEST_DATA_DIR "/ne/ne_110m_lakes.shp", "rb");
         if (file == nullptr) return 0L;
         std::fclose(file);
         return 1L;
       }},
  };
}

INSTANTIATE_TEST_SUITE_P(Platform, FailingMemory, testing::ValuesIn(operations()), name_of);

}  // namespace

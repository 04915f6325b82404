#include "tools/pack/labels.h"

#include <fstream>
#include <functional>

#include "support/temporary_directory.h"
#include "tools/pack/labelled_layer.h"
#include "tools/support/command_error.h"

namespace {

using kzgis::Continent;
using kzgis::Theme;
using kzgis::tools::Attributes;
using kzgis::tools::CommandError;
using kzgis::tools::Label;
using kzgis::tools::Labels;

class LabelsTest : public testing::Test {
 protected:
  std::string file(const std::string& name) const { return (directory_.path() / name).string(); }

  template <typename Error>
  std::string why(const std::function<void()>& action) const {
    try {
      action();
    } catch (const Error& error) {
      std::string text = error.what();
      const std::string place = directory_.path().string() + "/";
      for (std::size_t at; (at = text.find(place)) != std::string::npos;) {
        text.erase(at, place.size());
      }
      return text;
    }
    return "nothing thrown";
  }

 private:
  TemporaryDirectory directory_;
};

void expect(const Label& label, Theme theme, Continent continent, int level) {
  EXPECT_EQ(label.theme, theme);
  EXPECT_EQ(label.continent, continent);
  EXPECT_EQ(label.level, level);
}

TEST_F(LabelsTest, FixedOnesNeedNoTable) {
  const Labels labels(file("roads.shp"), {"coastal", "asia", "7"}, 3);
  expect(labels.of(3), Theme::coasts, Continent::asia, 7);
}

TEST_F(LabelsTest, TheUsualOnesAreNameContAndRank) {
  write_table(file("riv.dbf"), {"CONT", "RANK"}, {{"samer", "4"}, {"Africa", "15"}});
  const Labels labels(file("riv.shp"), {}, 2);
  expect(labels.of(1), Theme::rivers, Continent::south_america, 4);
  expect(labels.of(2), Theme::rivers, Continent::africa, 15);
}

TEST_F(LabelsTest, AnyAttributeWillDo) {
  write_table(file("all.dbf"), {"what", "where", "size"},
              {{"bdy", "europe", "0"}, {"river", "North America", "2"}});
  const Labels labels(file("all.shp"), {"@WHAT", "@Where", "@size"}, 2);
  expect(labels.of(1), Theme::boundaries, Continent::europe, 0);
  expect(labels.of(2), Theme::rivers, Continent::north_america, 2);
}

TEST_F(LabelsTest, FixedAndAttributesMix) {
  write_table(file("cil.dbf"), {"RANK"}, {{"1"}});
  expect(Labels(file("cil.shp"), {"", "europe", ""}, 1).of(1), Theme::coasts, Continent::europe, 1);
}

TEST_F(LabelsTest, NamesWhatIsMissing) {
  EXPECT_EQ(why<CommandError>([&] { Labels(file("roads.shp"), {}, 1); }),
            "roads.shp: its name is no theme (bdy, pby, cil or riv): --theme must say");
  EXPECT_EQ(why<CommandError>([&] { Labels(file("riv.shp"), {}, 1); }),
            "riv.dbf: No such file or directory");
  write_table(file("riv.dbf"), {"CONT"}, {{"asia"}});
  EXPECT_EQ(why<CommandError>([&] { Labels(file("riv.shp"), {}, 1); }),
            "riv.dbf: there is no attribute 'RANK'; --level can name another or a value for all "
            "records");
  EXPECT_EQ(why<CommandError>([&] {
              Labels(file("riv.shp"), {"", "", "1"}, 2);
            }),
            "riv.dbf: holds 1 rows for 2 records");
}

TEST_F(LabelsTest, NamesValuesThatAreNoLabels) {
  write_table(file("riv.dbf"), {"CONT", "RANK"}, {{"oceania", "4"}, {"asia", "16"}, {"asia", ""}});
  const Labels labels(file("riv.shp"), {}, 3);
  EXPECT_EQ(why<CommandError>([&] { labels.of(1); }),
            "riv.shp: record 1: its CONT is 'oceania', not africa, asia, europe, namer or samer");
  EXPECT_EQ(why<CommandError>([&] { labels.of(2); }),
            "riv.shp: record 2: its RANK is '16', not 0 to 15");
  EXPECT_EQ(why<CommandError>([&] { labels.of(3); }),
            "riv.shp: record 3: its RANK is '', not 0 to 15");
}

TEST_F(LabelsTest, NamesOptionsThatAreNoLabels) {
  EXPECT_EQ(why<kzgis::tools::UsageError>([&] {
              Labels(file("a.shp"), {"roads", "asia", "1"}, 1);
            }),
            "--theme: 'roads' is neither geographic, political, coastal or river nor @ and the "
            "name of an attribute");
  EXPECT_EQ(why<kzgis::tools::UsageError>([&] {
              Labels(file("a.shp"), {"river", "asia", "16"}, 1);
            }),
            "--level: '16' is neither 0 to 15 nor @ and the name of an attribute");
}

TEST_F(LabelsTest, ADamagedTableIsNamed) {
  std::ofstream(file("riv.dbf")) << "not a table";
  EXPECT_EQ(why<CommandError>([&] { Attributes attributes(file("riv.shp")); }),
            "riv.dbf: not a dBASE table");
}

}  // namespace

#include "tools/map/coasts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lines.h"

namespace kzgis::map {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Coasts coasts(const std::vector<Line>& rings) { return coasts_of(outline(rings).rings()); }

TEST(Coasts, OfAnIslandAreItsSides) {
  const Coasts island = coasts({{{0, 0}, {0, 5}, {5, 5}, {0, 0}}});
  EXPECT_THAT(lines(island.real), ElementsAre(Line{{0, 0}, {0, 5}, {5, 5}, {0, 0}}));
  EXPECT_THAT(lines(island.seams), IsEmpty());
}

TEST(Coasts, CloseARingThatIsNotClosed) {
  EXPECT_THAT(lines(coasts({{{0, 0}, {0, 5}, {5, 5}}}).real),
              ElementsAre(Line{{0, 0}, {0, 5}, {5, 5}, {0, 0}}));
}

TEST(Coasts, AreNotWhatOnlyClosesTheRing) {
  // An Antarctica as files have it: coast from west to east, home along the map's border.
  const Coasts antarctica =
      coasts({{{-180, -80}, {0, -70}, {179.9999999, -80}, {180, -90}, {-180, -90}}});
  EXPECT_THAT(lines(antarctica.real), ElementsAre(Line{{-180, -80}, {0, -70}, {179.9999999, -80}}));
  EXPECT_THAT(lines(antarctica.seams),
              ElementsAre(Line{{179.9999999, -80}, {180, -90}, {-180, -90}, {-180, -80}}));
}

TEST(Coasts, GoOnAcrossTheAntimeridian) {
  const Line ring{{170, 1}, {-170, 2}, {-170, 9}, {170, 1}};
  EXPECT_THAT(lines(coasts({ring}).real), ElementsAre(ring));
}

TEST(Coasts, OfABandRoundTheGlobeGoAllTheWay) {
  EXPECT_THAT(
      lines(coasts({{{-180, -20}, {180, -20}, {180, 20}, {-180, 20}}}).real),
      ElementsAre(Line{{-180, -20}, {0, -20}, {180, -20}}, Line{{180, 20}, {0, 20}, {-180, 20}}));
}

TEST(Coasts, NeedThreePoints) {
  const Coasts none = coasts({{}, {{1, 2}}, {{1, 2}, {3, 4}}, {{1, 1}, {2, 2}, {1, 1}}});
  EXPECT_THAT(lines(none.real), IsEmpty());
  EXPECT_THAT(lines(none.seams), IsEmpty());
}

TEST(GoAllTheWayTo, TakesNoSideOfMoreThanHalfATurn) {
  Outline line;
  begin_line(line, -180, 0);
  go_all_the_way_to(line, 180, 20);
  go_all_the_way_to(line, 0, 20);
  EXPECT_THAT(lines(line), ElementsAre(Line{{-180, 0}, {0, 10}, {180, 20}, {0, 20}}));
}

}  // namespace
}  // namespace kzgis::map

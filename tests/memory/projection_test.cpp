// Positions and projections without memory.

#include "kzgis/projection.h"

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/latlon.h"
#include "memory/failing.h"

namespace {

/// An array that a conversion makes.
struct Triple {
  Triple() = default;
  Triple(const Triple&) = delete;
  Triple& operator=(const Triple&) = delete;
  ~Triple() { delete[] xyz; }
  double* xyz = nullptr;
};

/// A projection that every one of the fifteen works with.
Projection settled(projType type) {
  Projection projection(type, 45.0, 10.0);
  projection.setFirstPar(30.0);
  projection.setSecondPar(60.0);
  return projection;
}

/// An operation on a projection, which has no world coordinates to begin with.
Operation on_projection(std::string name, long allocations, std::set<long> failures,
                        const std::function<long(Projection&)>& run) {
  return {std::move(name), allocations, std::move(failures), [run] {
            Projection projection = settled(OrthographicProj);
            return run(projection);
          }};
}

long convert(Projection& projection) {
  Triple there;
  const int count = projection.FromTo(LatLon(20.0, 30.0), &there.xyz);
  LatLon back(0.0, 0.0);
  if (there.xyz != nullptr) projection.FromTo(there.xyz, &back);
  return there.xyz != nullptr ? count : -1;
}

std::vector<Operation> operations() {
  static const Projection loaded = [] {
    Projection projection = settled(OrthographicProj);
    projection.setLLCoordinates(50.0, 20.0, 3.0);
    return projection;
  }();
  static const double world[] = {1.0, 2.0, 3.0};
  return {
      {"LatLon",
       0,
       {},
       [] {
         LatLon point(1.0, 2.0);
         point += LatLon(3.0, 4.0);
         nowhere() << point;
         return static_cast<long>(point.fetchLat());
       }},
      {"Projection", 0, {}, [] { return long{settled(GlobeProj).fetchProjection()}; }},
      {"Copy",
       0,
       {},
       [] {
         const Projection copy(loaded);
         return long{copy.fetchProjection()};
       }},
      on_projection("Assign", 0, {},
                    [](Projection& p) {
                      p = loaded;
                      return 1L;
                    }),
      on_projection("setLLCoordinates", 0, {},
                    [](Projection& p) {
                      p.setLLCoordinates(1.0, 2.0, 3.0);
                      return 1L;
                    }),
      on_projection("setLLCoordinates_Triples", 0, {},
                    [](Projection& p) {
                      p.setLLCoordinates(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0);
                      return 1L;
                    }),
      on_projection("setWorldCoordinates", 0, {},
                    [](Projection& p) {
                      p.setWorldCoordinates(1.0, 2.0, 3.0);
                      return 1L;
                    }),
      on_projection("setWorldCoordinates_Array", 0, {},
                    [](Projection& p) {
                      p.setWorldCoordinates(world);
                      return 1L;
                    }),
      on_projection("setWorldCoordinates_Point", 0, {},
                    [](Projection& p) {
                      p.setWorldCoordinates(WorldPoint{1.0, 2.0, 3.0});
                      return 1L;
                    }),
      {"fetchWorldCoordinates_Array",
       1,
       {kThrew},
       [] {
         Triple copy;
         return long{loaded.fetchWorldCoordinates(&copy.xyz)};
       }},
      on_projection("fetchWorldCoordinates_Others", 0, {},
                    [](Projection& p) {
                      double xyz[3];
                      WorldPoint point{};
                      p.removeCoords();
                      p.fetchWorldCoordinates(&point);
                      return long{loaded.fetchWorldCoordinates(&xyz[0], &xyz[1], &xyz[2])};
                    }),
      on_projection("setProjection_ByNumber", 0, {},
                    [](Projection& p) { return long{p.setProjection(GlobeProj)}; }),
      on_projection("setProjection_ByName", 1, {kThrew},
                    [](Projection& p) {
                      p.setProjection(UtString("lambert conic conformal"));
                      return long{p.fetchProjection()};
                    }),
      {"fetchProjectionName",
       1,
       {kThrew},
       [] {
         static const Projection conic(LambertConicProj);
         return static_cast<long>(conic.fetchProjectionName().size());
       }},
      on_projection("Settings", 0, {},
                    [](Projection& p) {
                      p.setGlobeRadius(-1.0);
                      p.setFirstPar(91.0);
                      return static_cast<long>(p.LatToDeg(p.LatToRad(p.fetchFirstPar())));
                    }),
      on_projection("FromTo_Array", 1, {kThrew}, convert),
      on_projection("FromTo_Array_Altitude", 1, {kThrew},
                    [](Projection& p) {
                      Triple there;
                      return long{p.FromTo(LatLon(1.0, 2.0), 5.0, &there.xyz)};
                    }),
      on_projection("FromTo_Array_Type", 1, {kThrew},
                    [](Projection& p) {
                      Triple there;
                      return long{p.FromTo(LatLon(1.0, 2.0), 5.0, GlobeProj, &there.xyz)};
                    }),
      on_projection("FromTo_Position", 0, {},
                    [](Projection& p) {
                      LatLon position(0.0, 0.0);
                      return long{p.FromTo(world, &position)};
                    }),
      on_projection("FromTo_Position_Altitude", 0, {},
                    [](Projection& p) {
                      LatLon position(0.0, 0.0);
                      double altitude = 0.0;
                      return long{p.FromTo(world, &position, &altitude)};
                    }),
      on_projection("FromTo_Position_Type", 0, {},
                    [](Projection& p) {
                      LatLon position(0.0, 0.0);
                      double altitude = 0.0;
                      return long{p.FromTo(world, GlobeProj, &position, &altitude)};
                    }),
      on_projection("FromTo_Point", 0, {},
                    [](Projection& p) { return long{p.FromTo(1.0, 2.0, 3.0) != nullptr}; }),
      on_projection("FromTo_PointOfArray", 0, {},
                    [](Projection& p) { return long{p.FromTo(world) != nullptr}; }),
      on_projection("FromTo_PointOfPoint", 0, {},
                    [](Projection& p) {
                      return long{p.FromTo(WorldPoint{1.0, 2.0, 3.0}) != nullptr};
                    }),
  };
}

/// Each projection called by itself, on an object that has no world coordinates.
std::vector<Operation> projections() {
  using Call = int (Projection::*)();
  using P = Projection;
  const std::vector<std::pair<const char*, Call>> forwards{
      {"Cartesian", &P::Cartesian},
      {"Mercator", &P::Mercator},
      {"LambertCylindric", &P::LambertCylindric},
      {"Gnomonic", &P::Gnomonic},
      {"Stereo", &P::Stereo},
      {"Orthographic", &P::Orthographic},
      {"Postel", &P::Postel},
      {"LambertAzimuthal", &P::LambertAzimuthal},
      {"LambertConical", &P::LambertConical},
      {"Albers", &P::Albers},
      {"CassiniSoldner", &P::CassiniSoldner},
      {"Bonne", &P::Bonne},
      {"Werner", &P::Werner},
      {"SansonFlamsteed", &P::SansonFlamsteed},
      {"Globe", &P::Globe}};
  const std::vector<std::pair<const char*, Call>> inverses{
      {"inverseCartesian", &P::inverseCartesian},
      {"inverseMercator", &P::inverseMercator},
      {"inverseLambertCylindric", &P::inverseLambertCylindric},
      {"inverseGnomonic", &P::inverseGnomonic},
      {"inverseStereo", &P::inverseStereo},
      {"inverseOrthographic", &P::inverseOrthographic},
      {"inversePostel", &P::inversePostel},
      {"inverseLambertAzimuthal", &P::inverseLambertAzimuthal},
      {"inverseLambertConical", &P::inverseLambertConical},
      {"inverseAlbers", &P::inverseAlbers},
      {"inverseCassiniSoldner", &P::inverseCassiniSoldner},
      {"inverseBonne", &P::inverseBonne},
      {"inverseWerner", &P::inverseWerner},
      {"inverseSansonFlamsteed", &P::inverseSansonFlamsteed},
      {"inverseGlobe", &P::inverseGlobe}};
  std::vector<Operation> all;
  const auto add = [&all](const char* name, Call call) {
    all.push_back(on_projection(name, 0, {}, [call](Projection& p) { return long{(p.*call)()}; }));
  };
  for (const auto& [name, call] : forwards) add(name, call);
  for (const auto& [name, call] : inverses) add(name, call);
  return all;
}

INSTANTIATE_TEST_SUITE_P(Projection, FailingMemory, testing::ValuesIn(operations()), name_of);
INSTANTIATE_TEST_SUITE_P(Projections, FailingMemory, testing::ValuesIn(projections()), name_of);

TEST(ProjectionWithoutMemory, ConvertsAgain) {
  expect_usable_again<Projection>(
      [](Projection& projection) {
        projection.setLLCoordinates(1.0, 2.0, 3.0);
        convert(projection);
      },
      [](Projection& projection) { EXPECT_EQ(convert(projection), 3); }, OrthographicProj, 10.0,
      20.0);
}

TEST(ProjectionMemory, AConversionAllocatesTheArrayThatItHandsOutAndNothingElse) {
  for (int type = CartesianProj; type <= GlobeProj; ++type) {
    SCOPED_TRACE(type);
    Projection projection = settled(static_cast<projType>(type));
    Triple there;
    LatLon back(0.0, 0.0);
    for (int again = 0; again < 2; ++again) {
      failing_memory::fail_from(1, true);
      projection.FromTo(LatLon(20.0, 30.0), &there.xyz);
      projection.FromTo(there.xyz, &back);
      EXPECT_FALSE(failing_memory::succeed());
    }
  }
}

}  // namespace

// Charts without memory.

#include "kzgis/chart.h"

#include <array>
#include <vector>

#include "memory/failing.h"

namespace {

using kzgis::Chart;
using kzgis::ChartParameters;
using kzgis::ErrorKind;

long kind_of(const kzgis::Result<Chart>& chart) {
  return chart ? 100 + chart->type() : static_cast<long>(chart.error().kind);
}

ChartParameters based_at(double lat) {
  ChartParameters parameters;
  parameters.base_lat = lat;
  return parameters;
}

/// A few points, and the arrays that receive what becomes of them.
struct Points {
  std::array<double, 3> a{40.0, 41.0, 42.0}, b{5.0, 6.0, 7.0}, c{1.0, 2.0, 3.0};
};

std::vector<Operation> operations() {
  return {
      {"make",
       0,
       {},
       [] {
         long sum = 0;
         for (int type = CartesianProj; type <= GlobeProj; ++type) {
           sum += kind_of(Chart::make(static_cast<projType>(type), based_at(40.0)));
         }
         return sum;
       }},
      {"make_Refused",
       1,
       {static_cast<long>(ErrorKind::out_of_memory)},
       [] { return kind_of(Chart::make(CartesianProj, based_at(91.0))); }},
      {"project_and_unproject",
       0,
       {},
       [] {
         long without_place = 0;
         for (int type = CartesianProj; type <= GlobeProj; ++type) {
           const auto chart = Chart::make(static_cast<projType>(type), based_at(40.0));
           Points p;
           without_place += static_cast<long>(chart->project(p.a, p.b, p.c, p.a, p.b, p.c) +
                                              chart->unproject(p.a, p.b, p.c, p.a, p.b, p.c) +
                                              chart->project(p.a, p.b, p.a, p.b) +
                                              chart->unproject(p.a, p.b, p.a, p.b));
         }
         return without_place;
       }},
      {"project_classic",
       1,
       {kThrew},
       [] {
         Points p;
         return 100 + static_cast<long>(kzgis::project_classic(Projection(MercatorProj), p.a, p.b,
                                                               p.c, p.a, p.b, p.c));
       }},
  };
}

INSTANTIATE_TEST_SUITE_P(Charts, FailingMemory, testing::ValuesIn(operations()), name_of);

}  // namespace

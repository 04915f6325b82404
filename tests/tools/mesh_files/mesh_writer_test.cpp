#include "tools/mesh_files/mesh_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace kzgis::tools {
namespace {

using testing::StartsWith;

/// Two triangles that are a square, and one far away.
std::vector<MeshPart> square_and_triangle() {
  return {{3, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, {0, 1, 2, 0, 2, 3}},
          {5, {{10.5, -0.25, 0}, {1e22, 0, 0}, {12, 1e-7, 0}}, {0, 1, 2}}};
}

std::string written(MeshFormat format, const std::vector<MeshPart>& meshes, bool spatial = false) {
  std::ostringstream out;
  const auto writer = make_mesh_writer(format, out, spatial);
  for (const MeshPart& mesh : meshes) writer->add(mesh);
  writer->finish();
  return out.str();
}

TEST(ObjWriter, NumbersVerticesThroughTheFile) {
  EXPECT_EQ(written(MeshFormat::obj, square_and_triangle()),
            "o record_3\n"
            "v 0 0 0\n"
            "v 2 0 0\n"
            "v 2 2 0\n"
            "v 0 2 0\n"
            "f 1 2 3\n"
            "f 1 3 4\n"
            "o record_5\n"
            "v 10.5 -0.25 0\n"
            "v 1e+22 0 0\n"
            "v 12 1e-07 0\n"
            "f 5 6 7\n");
}

TEST(PlyWriter, CountsFirstAndTellsTheRecordOfEachFace) {
  using namespace std::string_literals;
  // A double's sign and exponent stand last: 2 is 0x4000..., 12 is 0x4028..., -0.25 is 0xbfd0...
  EXPECT_EQ(written(MeshFormat::ply,
                    {{3, {{0, 0, 2}}, {0, 0, 0}}, {258, {{12, -0.25, 0}, {2, 0, 0}}, {0, 1, 0}}}),
            "ply\n"
            "format binary_little_endian 1.0\n"
            "element vertex 3\n"
            "property double x\n"
            "property double y\n"
            "property double z\n"
            "element face 2\n"
            "property list uchar int vertex_indices\n"
            "property int record\n"
            "end_header\n"
            "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x40"
            "\0\0\0\0\0\0\x28\x40\0\0\0\0\0\0\xd0\xbf\0\0\0\0\0\0\0\0"
            "\0\0\0\0\0\0\0\x40\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
            "\x03\0\0\0\0\0\0\0\0\0\0\0\0\x03\0\0\0"
            "\x03\x01\0\0\0\x02\0\0\0\x01\0\0\0\x02\x01\0\0"s);
}

TEST(StlWriter, CountsFromAnOriginThatTheHeaderNames) {
  using namespace std::string_literals;
  // The middle is (500001, 4000000.5, 1): floats about it hold what floats about 0 would lose.
  std::string header = "kzgis; origin 500001 4000000.5 1";
  header.resize(80, ' ');
  EXPECT_EQ(
      written(MeshFormat::stl,
              {{1, {{500000, 4000000, 1}, {500002, 4000000, 1}, {500000, 4000001, 1}}, {0, 1, 2}}}),
      header +
          "\x01\0\0\0"
          "\0\0\0\0\0\0\0\0\0\0\x80\x3f"    // 0, 0, 1: the normal
          "\0\0\x80\xbf\0\0\0\xbf\0\0\0\0"  // -1, -0.5, 0
          "\0\0\x80\x3f\0\0\0\xbf\0\0\0\0"  // 1, -0.5, 0
          "\0\0\x80\xbf\0\0\0\x3f\0\0\0\0"  // -1, 0.5, 0
          "\0\0"s);
}

TEST(StlWriter, LeavesOutWhatFloatsCannotTellFromALine) {
  const std::string file =
      written(MeshFormat::stl,
              {{1, {{-1, 0, 0}, {1, 2, 0}, {1, 2 + 1e-12, 0}, {-1, 2, 0}}, {0, 1, 2, 0, 2, 3}}});
  EXPECT_EQ(file.size(), 84U + 50U);
  EXPECT_EQ(file[80], 1);
}

TEST(StlWriter, KeepsTheHeaderShort) {
  const std::string file =
      written(MeshFormat::stl,
              {{1, {{-1.2345678901234e-123, -0.3333333333333333, -1.2345678901234e123}}, {}}});
  ASSERT_EQ(file.size(), 84U);
  EXPECT_EQ(file.substr(0, 61), "kzgis; origin -1.2345679e-123 -0.33333333 -1.2345679e+123    ");
}

TEST(GeoJsonWriter, HasAFeatureForEachRecord) {
  EXPECT_EQ(written(MeshFormat::geojson, square_and_triangle()),
            "{\"type\":\"FeatureCollection\",\"features\":[\n"
            "{\"type\":\"Feature\",\"properties\":{\"record\":3},\"geometry\":"
            "{\"type\":\"MultiPolygon\",\"coordinates\":["
            "[[[0,0],[2,0],[2,2],[0,0]]],[[[0,0],[2,2],[0,2],[0,0]]]]}},\n"
            "{\"type\":\"Feature\",\"properties\":{\"record\":5},\"geometry\":"
            "{\"type\":\"MultiPolygon\",\"coordinates\":["
            "[[[10.5,-0.25],[1e+22,0],[12,1e-07],[10.5,-0.25]]]]}}\n"
            "]}\n");
}

TEST(GeoJsonWriter, HasAttributesAsProperties) {
  MeshPart part{4, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}}, {0, 1, 2}};
  part.attributes["NAME"] = "say \"a\"";
  part.attributes["HEIGHT"] = 2.5;
  part.attributes["FLOORS"] = nullptr;
  EXPECT_THAT(written(MeshFormat::geojson, {part}),
              testing::HasSubstr(R"("properties":{"record":4,"NAME":"say \"a\"","HEIGHT":2.5,)"
                                 R"("FLOORS":null},)"));
}

TEST(GeoJsonWriter, LeavesOutFlatTrianglesAndTurnsClockwiseOnes) {
  EXPECT_EQ(written(MeshFormat::geojson,
                    {{1, {{0, 0, 0}, {1, 1, 0}, {2, 2, 0}, {0, 4, 0}}, {0, 1, 2, 0, 3, 2}}}),
            "{\"type\":\"FeatureCollection\",\"features\":[\n"
            "{\"type\":\"Feature\",\"properties\":{\"record\":1},\"geometry\":"
            "{\"type\":\"MultiPolygon\",\"coordinates\":["
            "[[[0,0],[2,2],[0,4],[0,0]]]]}}\n"
            "]}\n");
}

TEST(GeoJsonWriter, WritesSpatialMeshesAsTheyAre) {
  EXPECT_EQ(written(MeshFormat::geojson, {{1, {{0, 0, 1}, {0, 2, 0}, {2, 0, 3}}, {0, 1, 2}}}, true),
            "{\"type\":\"FeatureCollection\",\"features\":[\n"
            "{\"type\":\"Feature\",\"properties\":{\"record\":1},\"geometry\":"
            "{\"type\":\"MultiPolygon\",\"coordinates\":["
            "[[[0,0,1],[0,2,0],[2,0,3],[0,0,1]]]]}}\n"
            "]}\n");
}

TEST(MeshWriters, WriteWholeFilesWithoutRecords) {
  EXPECT_EQ(written(MeshFormat::obj, {}), "");
  EXPECT_EQ(written(MeshFormat::geojson, {}),
            "{\"type\":\"FeatureCollection\",\"features\":[\n]}\n");
  EXPECT_THAT(written(MeshFormat::ply, {}), testing::HasSubstr("element face 0\n"));
  EXPECT_THAT(written(MeshFormat::svg, {}), testing::HasSubstr("</svg>"));
  EXPECT_EQ(written(MeshFormat::stl, {}).size(), 84U);
}

// A buffer, a view and an accessor must not be empty.
TEST(GlbWriter, WritesRecordsWithoutTriangles) {
#ifdef KZGIS_HAS_TINYGLTF
  for (const std::vector<MeshPart>& parts : {std::vector<MeshPart>{}, {{1, {}, {}}}}) {
    const std::string file = written(MeshFormat::glb, parts);
    EXPECT_THAT(file, StartsWith("glTF\2"));
    EXPECT_THAT(file, testing::Not(testing::HasSubstr("buffer")));
    EXPECT_THAT(file, testing::Not(testing::HasSubstr("accessors")));
  }
#else
  EXPECT_THROW(written(MeshFormat::glb, {}), CommandError);
#endif
}

#ifdef KZGIS_HAS_TINYGLTF
// Extras must be objects; those of `asset` are there once.
TEST(GlbWriter, WritesNoExtrasForWhatIsNoRecord) {
  const std::string file =
      written(MeshFormat::glb, {{0, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2}}});
  EXPECT_THAT(file, testing::HasSubstr("\"name\":\"surface\""));
  EXPECT_EQ(file.find("extras"), file.rfind("extras"));
}
#endif

TEST(NameOf, IsTheRecords) {
  EXPECT_EQ(name_of({3, {}, {}}), "record_3");
  EXPECT_EQ(name_of({}), "surface");
}

TEST(PictureWriter, TakesTheShapeOfTheMesh) {
  // The square's 1600 by 1600 pixels; half as high for a mesh half as high, margins apart.
  EXPECT_THAT(written(MeshFormat::svg, {square_and_triangle()[0]}),
              testing::HasSubstr("width=\"1600px\" height=\"1600px\""));
  EXPECT_THAT(written(MeshFormat::svg, {{1, {{0, 0, 0}, {4, 0, 0}, {4, 2, 0}}, {0, 1, 2}}}),
              testing::HasSubstr("width=\"1600px\" height=\"824px\""));
  EXPECT_THAT(written(MeshFormat::png, square_and_triangle()), StartsWith("\x89PNG\r"));
}

}  // namespace
}  // namespace kzgis::tools

#include "tools/triangulate/mesh_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace kzgis::tools {
namespace {

using testing::StartsWith;

/// Two triangles that are a square, and one far away.
std::vector<RecordMesh> square_and_triangle() {
  return {{3, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, {0, 1, 2, 0, 2, 3}},
          {5, {{10.5, -0.25, 0}, {1e22, 0, 0}, {12, 1e-7, 0}}, {0, 1, 2}}};
}

std::string written(MeshFormat format, const std::vector<RecordMesh>& meshes,
                    bool spatial = false) {
  std::ostringstream out;
  const auto writer = make_mesh_writer(format, out, spatial);
  for (const RecordMesh& mesh : meshes) writer->add(mesh);
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
  EXPECT_EQ(written(MeshFormat::ply, square_and_triangle()),
            "ply\n"
            "format ascii 1.0\n"
            "element vertex 7\n"
            "property double x\n"
            "property double y\n"
            "property double z\n"
            "element face 3\n"
            "property list uchar int vertex_indices\n"
            "property int record\n"
            "end_header\n"
            "0 0 0\n"
            "2 0 0\n"
            "2 2 0\n"
            "0 2 0\n"
            "10.5 -0.25 0\n"
            "1e+22 0 0\n"
            "12 1e-07 0\n"
            "3 0 1 2 3\n"
            "3 0 2 3 3\n"
            "3 4 5 6 5\n");
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

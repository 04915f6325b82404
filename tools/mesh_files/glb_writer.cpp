// The scene of Khronos glTF 2.0 (ISO/IEC 12113:2022), in one file; tinygltf writes its
// JSON and puts the chunks together.  One buffer, three views of it: the positions of all parts,
// their normals, their indices.

#include "tools/mesh_files/glb_writer.h"

#include "tools/support/command_error.h"

#ifdef KZGIS_HAS_TINYGLTF

#include <tiny_gltf.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tools/mesh_files/binary.h"
#include "tools/mesh_files/float_point.h"
#include "tools/mesh_files/normals.h"
#include "tools/picture/colour.h"

namespace kzgis::tools {

namespace {

constexpr int kPositions = 0, kNormals = 1, kIndices = 2;  // the views
constexpr std::size_t kPointBytes = 3 * sizeof(float);

std::vector<double> numbers(const WorldPoint& p) { return {p.x, p.y, p.z}; }

/// One attribute; numbers beyond 32 bits become doubles, as JSON has no other.
tinygltf::Value value_of(const nlohmann::ordered_json& value) {
  if (value.is_string()) return tinygltf::Value(value.get<std::string>());
  if (value.is_boolean()) return tinygltf::Value(value.get<bool>());
  if (!value.is_number_integer()) return tinygltf::Value(value.get<double>());
  const auto whole = value.get<std::int64_t>();
  const auto number = static_cast<int>(whole);
  return number == whole ? tinygltf::Value(number) : tinygltf::Value(static_cast<double>(whole));
}

/// An object without its nulls, which extras cannot hold.
tinygltf::Value extras_of(const nlohmann::ordered_json& object) {
  tinygltf::Value::Object members;
  for (const auto& [name, value] : object.items()) {
    if (!value.is_null()) members.emplace(name, value_of(value));
  }
  return tinygltf::Value(std::move(members));
}

/// From a colour as screens have it to the share of light that it is (IEC 61966-2-1).
double light(double colour) {
  return colour <= 0.04045 ? colour / 12.92 : std::pow((colour + 0.055) / 1.055, 2.4);
}

/// A dull surface, seen from both sides: a flat mesh may be looked at from below.
tinygltf::Material material(const Colour& colour) {
  tinygltf::Material result;
  result.pbrMetallicRoughness.baseColorFactor = {light(colour.red), light(colour.green),
                                                 light(colour.blue), 1.0};
  result.pbrMetallicRoughness.metallicFactor = 0.0;
  result.pbrMetallicRoughness.roughnessFactor = 1.0;
  result.doubleSided = true;
  return result;
}

class GlbWriter : public MeshWriter {
 public:
  explicit GlbWriter(std::ostream& out) : out_(out) {
    model_.asset.version = "2.0";
    model_.asset.generator = "kzgis";
    for (const Colour& tint : kTints) model_.materials.push_back(material(tint));
    tinygltf::Node root;
    root.name = "z_up";
    root.rotation = {-std::sqrt(0.5), 0.0, 0.0, std::sqrt(0.5)};
    model_.nodes.push_back(std::move(root));
  }

  void add(MeshPart part) override {
    extent_.add(part);
    Extent own;
    own.add(part);
    const WorldPoint middle = own.middle();
    tinygltf::Node node;
    node.name = name_of(part);
    const auto properties = properties_of(part);
    if (!properties.empty()) node.extras = extras_of(properties);
    node.translation = numbers(middle);
    if (!part.triangles.empty()) node.mesh = add_mesh(part, middle);
    model_.nodes.front().children.push_back(static_cast<int>(model_.nodes.size()));
    model_.nodes.push_back(std::move(node));
  }

  void finish() override {
    const WorldPoint origin = extent_.middle();
    const std::vector<double> from = numbers(origin);
    tinygltf::Value::Array origin_value;
    for (const double coordinate : from) origin_value.emplace_back(coordinate);
    model_.asset.extras = tinygltf::Value({{"origin", tinygltf::Value(std::move(origin_value))}});
    for (std::size_t i = 1; i < model_.nodes.size(); ++i) {
      for (std::size_t k = 0; k < 3; ++k) model_.nodes[i].translation[k] -= from[k];
    }
    tinygltf::Scene scene;
    scene.nodes = {0};
    model_.scenes.push_back(std::move(scene));
    model_.defaultScene = 0;
    if (!bytes_[kIndices].empty()) put_buffer_together();
    if (!tinygltf::TinyGLTF().WriteGltfSceneToStream(&model_, out_, false, true)) {
      throw CommandError("the .glb file could not be put together");
    }
  }

 private:
  /// Returns its number.
  int add_mesh(const MeshPart& part, const WorldPoint& middle) {
    const ShadedPart shaded = with_normals(part);
    FloatPoint low{}, high{};
    low.fill(std::numeric_limits<float>::infinity());
    high.fill(-std::numeric_limits<float>::infinity());
    tinygltf::Primitive primitive;
    primitive.attributes["POSITION"] = add_accessor(kPositions, TINYGLTF_COMPONENT_TYPE_FLOAT,
                                                    TINYGLTF_TYPE_VEC3, shaded.source.size());
    primitive.attributes["NORMAL"] = add_accessor(kNormals, TINYGLTF_COMPONENT_TYPE_FLOAT,
                                                  TINYGLTF_TYPE_VEC3, shaded.source.size());
    primitive.indices = add_accessor(kIndices, TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT,
                                     TINYGLTF_TYPE_SCALAR, shaded.triangles.size());
    for (std::size_t v = 0; v < shaded.source.size(); ++v) {
      const FloatPoint position = to_floats(difference(part.vertices[shaded.source[v]], middle));
      const FloatPoint normal = to_floats(shaded.normals[v]);
      for (std::size_t k = 0; k < 3; ++k) {
        low.at(k) = std::min(low.at(k), position.at(k));
        high.at(k) = std::max(high.at(k), position.at(k));
        append_binary(bytes_[kPositions], position.at(k));
        append_binary(bytes_[kNormals], normal.at(k));
      }
    }
    for (const std::uint32_t index : shaded.triangles) append_binary(bytes_[kIndices], index);
    tinygltf::Accessor& positions =
        model_.accessors[static_cast<std::size_t>(primitive.attributes["POSITION"])];
    positions.minValues.assign(low.begin(), low.end());
    positions.maxValues.assign(high.begin(), high.end());
    primitive.material = static_cast<int>(model_.meshes.size() % kTints.size());
    primitive.mode = TINYGLTF_MODE_TRIANGLES;
    tinygltf::Mesh mesh;
    mesh.name = name_of(part);
    mesh.primitives.push_back(std::move(primitive));
    model_.meshes.push_back(std::move(mesh));
    return static_cast<int>(model_.meshes.size()) - 1;
  }

  /// Of what is appended to a view next.  Returns its number.
  int add_accessor(int view, int component, int type, std::size_t count) {
    tinygltf::Accessor accessor;
    accessor.bufferView = view;
    accessor.byteOffset = bytes_.at(static_cast<std::size_t>(view)).size();
    accessor.componentType = component;
    accessor.type = type;
    accessor.count = count;
    model_.accessors.push_back(std::move(accessor));
    return static_cast<int>(model_.accessors.size()) - 1;
  }

  void put_buffer_together() {
    // The file's lengths have 32 bits, and its JSON must fit beside the buffer.
    constexpr std::uint64_t kMostBytes = 0xF0000000;
    std::uint64_t length = 0;
    for (const std::string& bytes : bytes_) length += bytes.size();
    if (length > kMostBytes) {
      throw CommandError(std::to_string(length) + " bytes of vertices are more than .glb can hold");
    }
    tinygltf::Buffer buffer;
    buffer.data.reserve(length);
    for (std::string& bytes : bytes_) {
      tinygltf::BufferView view;
      view.buffer = 0;
      view.byteOffset = buffer.data.size();
      view.byteLength = bytes.size();
      const bool indices = &bytes == &bytes_[kIndices];
      if (!indices) view.byteStride = kPointBytes;
      view.target = indices ? TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER : TINYGLTF_TARGET_ARRAY_BUFFER;
      model_.bufferViews.push_back(std::move(view));
      buffer.data.insert(buffer.data.end(), bytes.begin(), bytes.end());
      std::string().swap(bytes);
    }
    model_.buffers.push_back(std::move(buffer));
  }

  std::ostream& out_;
  tinygltf::Model model_;
  Extent extent_;
  std::array<std::string, 3> bytes_;  ///< of each view
};

}  // namespace

std::unique_ptr<MeshWriter> make_glb_writer(std::ostream& out) {
  return std::make_unique<GlbWriter>(out);
}

}  // namespace kzgis::tools

#else

namespace kzgis::tools {

std::unique_ptr<MeshWriter> make_glb_writer(std::ostream& /*out*/) {
  throw CommandError("this kzgis was built without tinygltf, which writes .glb");
}

}  // namespace kzgis::tools

#endif

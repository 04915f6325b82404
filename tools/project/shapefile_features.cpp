// Shapefiles by shapelib.
//
// Its files are kept in memory until all are complete, since it goes back and forth in them, and
// written side by side then: as large as the output is, the memory is that and no more.

#include <shapefil.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <new>
#include <utility>

#include "tools/project/feature_writer.h"
#include "tools/project/projection_wkt.h"
#include "tools/support/command_error.h"
#include "tools/support/output_file.h"
#include "tools/support/shape_file.h"

namespace kzgis::tools {

namespace {

/// A file of shapelib's, and where it stands in it.
struct MemoryFile {
  std::string bytes;
  std::size_t position = 0;
};

/// The files by their names.  shapelib's hooks have no place for a context: those of the writer at
/// hand are found here.
using MemoryFiles = std::map<std::string, MemoryFile>;
thread_local MemoryFiles* files_at_hand = nullptr;

MemoryFile& file_of(SAFile file) { return *static_cast<MemoryFile*>(static_cast<void*>(file)); }

// No exception may pass through shapelib: what has no memory fails like a write to a full disk.

SAFile open_file(const char* name, const char* access) {
  try {
    const bool is_new = access[0] == 'w';
    if (!is_new && files_at_hand->count(name) == 0) return nullptr;
    MemoryFile& file = (*files_at_hand)[name];
    if (is_new) file.bytes.clear();
    file.position = 0;
    return static_cast<SAFile>(static_cast<void*>(&file));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

SAOffset read_file(void* to, SAOffset size, SAOffset count, SAFile handle) {
  MemoryFile& file = file_of(handle);
  if (size == 0 || file.position >= file.bytes.size()) return 0;
  const SAOffset whole = std::min<SAOffset>(count, (file.bytes.size() - file.position) / size);
  std::memcpy(to, file.bytes.data() + file.position, whole * size);
  file.position += whole * size;
  return whole;
}

SAOffset write_file(void* from, SAOffset size, SAOffset count, SAFile handle) {
  MemoryFile& file = file_of(handle);
  try {
    const std::size_t end = file.position + size * count;
    if (end > file.bytes.size()) file.bytes.resize(end);
    std::memcpy(file.bytes.data() + file.position, from, size * count);
    file.position = end;
    return count;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

SAOffset seek_file(SAFile handle, SAOffset offset, int whence) {
  MemoryFile& file = file_of(handle);
  const std::size_t from = whence == SEEK_SET   ? 0
                           : whence == SEEK_CUR ? file.position
                                                : file.bytes.size();
  file.position = from + offset;
  return 0;
}

SAOffset tell_file(SAFile handle) { return file_of(handle).position; }
int flush_file(SAFile /*handle*/) { return 0; }
int close_file(SAFile /*handle*/) { return 0; }

int remove_file(const char* name) {
  files_at_hand->erase(name);
  return 0;
}

void stay_silent(const char* /*message*/) {}

SAHooks memory_hooks() {
  SAHooks hooks{};
  SASetupDefaultHooks(&hooks);
  hooks.FOpen = open_file;
  hooks.FRead = read_file;
  hooks.FWrite = write_file;
  hooks.FSeek = seek_file;
  hooks.FTell = tell_file;
  hooks.FFlush = flush_file;
  hooks.FClose = close_file;
  hooks.Remove = remove_file;
  hooks.Error = stay_silent;
  return hooks;
}

std::string without_ending(const std::string& output) {
  return is_shapefile_name(output) ? output.substr(0, output.size() - 4) : output;
}

int type_of(const ShapefileContent& content) {
  if (content.kind == ShapeKind::points) return content.many ? SHPT_MULTIPOINT : SHPT_POINT;
  return content.kind == ShapeKind::lines ? SHPT_ARC : SHPT_POLYGON;
}

class ShapefileFeatures : public FeatureWriter {
 public:
  ShapefileFeatures(const std::string& output, const ShapefileContent& content,
                    const Attributes* table, const Chart& chart)
      : stem_(without_ending(output)), type_(type_of(content)), source_(table) {
    outputs_.emplace_back(stem_ + ".shp", output);  // or else the work need not begin
    files_at_hand = &files_;
    SAHooks hooks = memory_hooks();
    shapes_.reset(SHPCreateLL(kName, type_, &hooks));
    const char* const code_page = table != nullptr ? DBFGetCodePage(table->handle()) : nullptr;
    table_.reset(DBFCreateLL(kName, code_page, &hooks));
    if (!shapes_ || !table_) throw std::bad_alloc();
    if (table != nullptr) {
      copy_fields(*table);
    } else {
      constexpr int kDigits = 10;
      DBFAddField(table_.get(), "RECORD", FTInteger, kDigits, 0);
    }
    files_["x.prj"].bytes = projection_wkt(chart);
  }
  ~ShapefileFeatures() override { close(); }
  ShapefileFeatures(const ShapefileFeatures&) = delete;
  ShapefileFeatures& operator=(const ShapefileFeatures&) = delete;

  void add(const MapFeature& feature) override {
    std::vector<int> starts;
    std::vector<double> x;
    std::vector<double> y;
    const auto& parts = feature.parts;
    if (feature.kind == ShapeKind::points) {
      x = parts.x;
      y = parts.y;
    }
    for (std::size_t part = 0; part < parts.starts.size(); ++part) {
      const auto begin = static_cast<std::size_t>(parts.starts[part]);
      starts.push_back(static_cast<int>(x.size()));
      append_part(parts.x, begin, feature.end_of(part), x);
      append_part(parts.y, begin, feature.end_of(part), y);
    }
    const std::unique_ptr<SHPObject, Destroy> object(SHPCreateObject(
        type_, -1, static_cast<int>(starts.size()), starts.empty() ? nullptr : starts.data(),
        nullptr, static_cast<int>(x.size()), x.data(), y.data(), nullptr, nullptr));
    if (!object) throw std::bad_alloc();
    const int row = SHPWriteObject(shapes_.get(), -1, object.get());
    if (row < 0 || !write_row(row, feature.record)) {
      throw CommandError(stem_ + ".shp: a shapefile has no room for so much");
    }
  }

  void commit() override {
    close();
    for (const auto& [name, file] : files_) {
      const std::string path = stem_ + name.substr(name.rfind('.'));
      if (name != "x.shp") outputs_.emplace_back(path, stem_ + ".shp");
      OutputFile& output = name == "x.shp" ? outputs_.front() : outputs_.back();
      output.stream() << file.bytes;
    }
    OutputFile::commit_together(outputs_);
  }

 private:
  static constexpr const char* kName = "x.shp";  // shapelib puts other endings there itself

  struct Close {
    void operator()(SHPHandle shapes) const { SHPClose(shapes); }
    void operator()(DBFHandle table) const { DBFClose(table); }
  };
  struct Destroy {
    void operator()(SHPObject* object) const { SHPDestroyObject(object); }
  };

  /// Polygons of shapefiles run the other way, and repeat the first vertex.
  void append_part(const std::vector<double>& from, std::size_t begin, std::size_t end,
                   std::vector<double>& to) const {
    if (type_ != SHPT_POLYGON) {
      for (std::size_t i = begin; i < end; ++i) to.push_back(from[i]);
      return;
    }
    to.push_back(from[begin]);
    for (std::size_t i = end; i > begin; --i) to.push_back(from[i - 1]);
  }

  void copy_fields(const Attributes& table) {
    DBFInfo* const from = table.handle();
    for (int i = 0; i < DBFGetFieldCount(from); ++i) {
      char name[XBASE_FLDNAME_LEN_READ + 1] = {};
      int width = 0;
      int decimals = 0;
      DBFGetFieldInfo(from, i, name, &width, &decimals);
      DBFAddNativeFieldType(table_.get(), name, DBFGetNativeFieldType(from, i), width, decimals);
    }
    // A row is copied as the bytes that it is.
    if (table_->nRecordLength != from->nRecordLength) {
      throw CommandError(table.name() + ": its rows are not as long as its fields");
    }
  }

  bool write_row(int row, std::uint32_t record) {
    if (source_ == nullptr) {
      return DBFWriteIntegerAttribute(table_.get(), row, 0, static_cast<int>(record)) != 0;
    }
    const char* const tuple = DBFReadTuple(source_->handle(), static_cast<int>(record) - 1);
    if (tuple == nullptr) return false;
    std::string copy(tuple, static_cast<std::size_t>(table_->nRecordLength));
    return DBFWriteTuple(table_.get(), row, copy.data()) != 0;
  }

  void close() {
    files_at_hand = &files_;
    shapes_.reset();
    table_.reset();
    files_at_hand = nullptr;
  }

  std::string stem_;
  int type_;
  const Attributes* source_;
  MemoryFiles files_;  // while shapelib's handles live
  std::unique_ptr<SHPInfo, Close> shapes_;
  std::unique_ptr<DBFInfo, Close> table_;
  std::deque<OutputFile> outputs_;
};

}  // namespace

std::unique_ptr<FeatureWriter> make_shapefile_features(const std::string& output,
                                                       const ShapefileContent& content,
                                                       const Attributes* table,
                                                       const Chart& chart) {
  return std::make_unique<ShapefileFeatures>(output, content, table, chart);
}

}  // namespace kzgis::tools

// Shapefiles, record by record.

#include <kzgis/shapefile.h>
#include <pybind11/stl.h>

#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "python/src/arrays.h"
#include "python/src/failures.h"
#include "python/src/module.h"

namespace kzgis::python {

namespace {

using NoGil = py::gil_scoped_release;

py::tuple to_tuple(const Box& box) {
  return py::make_tuple(box.min_x, box.min_y, box.max_x, box.max_y);
}

/// What a record lends, copied.
struct OwnRecord {
  std::uint32_t number = 0;
  ShapeType type = ShapeType::null;
  Box box;
  std::vector<std::int32_t> parts;
  std::vector<double> pairs, z, m;
};

/// A file that any number of threads may read from, one after the other, and that one may close.
///
/// A thread waits for the lock without the interpreter's lock, and never for that with it.
class File {
 public:
  explicit File(const std::string& path)
      : file_(open(path)), path_(file_->path()), index_path_(file_->index_path()) {}

  std::uint32_t size() const { return file().size(); }
  int type() const { return static_cast<int>(file().type()); }
  py::tuple box() const { return to_tuple(file().box()); }
  py::str path() const { return to_text(path_); }
  py::str index_path() const { return to_text(index_path_); }

  py::tuple read(std::uint32_t index) {
    OwnRecord record;
    {
      const NoGil unlocked;
      const std::scoped_lock lock(mutex_);
      record = copy_record(index);
    }
    return py::make_tuple(record.number, static_cast<int>(record.type), to_tuple(record.box),
                          to_array(std::move(record.parts)), to_rows(std::move(record.pairs), 2),
                          to_array(std::move(record.z)), to_array(std::move(record.m)));
  }

  void close() {
    const NoGil unlocked;
    const std::scoped_lock lock(mutex_);
    file_.reset();
  }

 private:
  static Shapefile open(const std::string& path) {
    const NoGil unlocked;
    return value_of(Shapefile::open(path), path);
  }

  const Shapefile& file() const {
    if (!file_) throw std::invalid_argument("the file is closed");
    return *file_;
  }

  OwnRecord copy_record(std::uint32_t index) {
    if (!file_) throw std::invalid_argument("the file is closed");
    const ShapeRecord record = value_of(file_->read(index), path_);
    return {record.number,
            record.type,
            record.box,
            {record.parts.begin(), record.parts.end()},
            interleave(record.x, record.y),
            {record.z.begin(), record.z.end()},
            {record.m.begin(), record.m.end()}};
  }

  std::optional<Shapefile> file_;
  std::string path_, index_path_;
  std::mutex mutex_;
};

}  // namespace

void add_shapefile(py::module_& module) {
  py::class_<File>(module, "Shapefile")
      .def(py::init<const std::string&>(), py::arg("path"))
      .def("size", &File::size)
      .def("type", &File::type)
      .def("box", &File::box)
      .def("path", &File::path)
      .def("index_path", &File::index_path)
      .def("read", &File::read, py::arg("index"))
      .def("close", &File::close);
  module.def(
      "shape_type_name",
      [](int type) -> std::optional<std::string> {
        const char* const name = name_of(static_cast<ShapeType>(type));
        return name != nullptr ? std::optional<std::string>(name) : std::nullopt;
      },
      py::arg("type"));
}

}  // namespace kzgis::python

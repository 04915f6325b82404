// kzgis._kzgis: the library's services with NumPy's arrays for spans and exceptions for errors.
//
// The package around it, in Python, takes what users have, broadcasts and flattens it, and gives
// results their names; here are the calls that work, each without the interpreter's lock.

#include "python/src/module.h"

#include "python/src/failures.h"

// NOLINTNEXTLINE: the macro is pybind11's
PYBIND11_MODULE(_kzgis, module) {
  module.doc() = "The compiled half of kzgis; use the package.";
  kzgis::python::translate_failures();
  kzgis::python::add_chart(module);
  kzgis::python::add_databank(module);
  kzgis::python::add_elevation(module);
  kzgis::python::add_latlon(module);
  kzgis::python::add_mesh(module);
  kzgis::python::add_mesh_file(module);
  kzgis::python::add_shapefile(module);
}

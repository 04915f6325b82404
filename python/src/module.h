// What each source adds to the module.

#ifndef KZGIS_PYTHON_MODULE_H
#define KZGIS_PYTHON_MODULE_H

#include <pybind11/pybind11.h>

namespace kzgis::python {

void add_chart(pybind11::module_& module);
void add_databank(pybind11::module_& module);
void add_elevation(pybind11::module_& module);
void add_latlon(pybind11::module_& module);
void add_mesh(pybind11::module_& module);
void add_mesh_file(pybind11::module_& module);
void add_shapefile(pybind11::module_& module);

}  // namespace kzgis::python

#endif

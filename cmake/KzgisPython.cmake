# Which Python is meant: the host's own, for whose users the module is installed, not one that
# happens to come first in PATH.  Another one is taken by -DPython3_EXECUTABLE=...
set(kzgis_python_default OFF)
if(PROJECT_IS_TOP_LEVEL)
  if(NOT DEFINED Python3_EXECUTABLE AND NOT DEFINED Python3_ROOT_DIR AND EXISTS /usr/bin/python3)
    set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "The Python that the module is for")
  endif()
  find_package(Python3 QUIET COMPONENTS Interpreter OPTIONAL_COMPONENTS Development.Module NumPy)
  if(KZGIS_BUILD_TOOLS AND Python3_Development.Module_FOUND AND Python3_NumPy_FOUND)
    find_package(pybind11 2.9 CONFIG QUIET)
    set(kzgis_python_default ${pybind11_FOUND})
  endif()
endif()
option(KZGIS_BUILD_PYTHON "Build the Python module (needs pybind11, NumPy and the tools)"
  ${kzgis_python_default})
if(KZGIS_BUILD_PYTHON)
  if(NOT KZGIS_BUILD_TOOLS)
    message(FATAL_ERROR "The Python module writes mesh files by the command's code: "
      "KZGIS_BUILD_PYTHON needs KZGIS_BUILD_TOOLS")
  endif()
  find_package(Python3 REQUIRED COMPONENTS Interpreter Development.Module NumPy)
endif()

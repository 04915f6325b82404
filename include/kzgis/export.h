#ifndef KZGIS_EXPORT_H
#define KZGIS_EXPORT_H

/// Marks what the shared library exports; everything else in it is hidden.
///
/// Only Windows tells building, using and static linking apart: CMake defines
/// KZGIS_BUILDING while the library itself is compiled and KZGIS_STATIC for a
/// static one and its clients.
#if defined(_WIN32)
#if defined(KZGIS_STATIC)
#define KZGIS_EXPORT
#elif defined(KZGIS_BUILDING)
#define KZGIS_EXPORT __declspec(dllexport)
#else
#define KZGIS_EXPORT __declspec(dllimport)
#endif
#else
#define KZGIS_EXPORT __attribute__((visibility("default")))
#endif

#endif

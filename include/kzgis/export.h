// What a shared library shows of itself, and under which symbols.

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

/// Stands behind the declaration of a variable or function of the global namespace, and gives it
/// a symbol of the same name with `kzgis_` before it.
///
/// In C++ nothing but the name goes into the symbol of such a variable, and little more into
/// that of a function without parameters.  A program with a `tr` of its own, which may never have
/// heard of this library's, would therefore share its memory with the library: the dynamic
/// linker lets the first symbol of a name serve everybody.  Linked statically, it would not even
/// link.  Where libraries are not ELF files the macro is empty.
#if defined(__ELF__) && defined(__GNUC__)
#define KZGIS_SYMBOL(name) __asm__("kzgis_" #name)  // NOLINT(cppcoreguidelines-macro-usage)
#else
#define KZGIS_SYMBOL(name)  // NOLINT(cppcoreguidelines-macro-usage)
#endif

#endif

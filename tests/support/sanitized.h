// Whether a sanitizer watches this program, told alike for g++ and clang++.
//
// KZGIS_ADDRESS_SANITIZER is defined under the address sanitizer; KZGIS_SANITIZED under that and
// the thread sanitizer, where all takes many times longer and memory is not the program's own.

#ifndef KZGIS_TESTS_SUPPORT_SANITIZED_H
#define KZGIS_TESTS_SUPPORT_SANITIZED_H

#ifdef __SANITIZE_ADDRESS__
#define KZGIS_ADDRESS_SANITIZER
#endif
#ifdef __SANITIZE_THREAD__
#define KZGIS_SANITIZED
#endif
#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define KZGIS_ADDRESS_SANITIZER
#endif
#if __has_feature(thread_sanitizer)
#define KZGIS_SANITIZED
#endif
#endif

#ifdef KZGIS_ADDRESS_SANITIZER
#define KZGIS_SANITIZED
#endif

/// By how many times a test that a sanitizer watches does less of the same.
#ifdef KZGIS_SANITIZED
inline constexpr int kWatchedShare = 12;
#else
inline constexpr int kWatchedShare = 1;
#endif

#endif

// Which sanitizer this program is built with, told alike for g++ and clang++.
//
// KZGIS_ADDRESS_SANITIZER and KZGIS_THREAD_SANITIZER are defined where theirs is on.

#ifndef KZGIS_TESTS_SUPPORT_SANITIZED_H
#define KZGIS_TESTS_SUPPORT_SANITIZED_H

#ifdef __SANITIZE_ADDRESS__
#define KZGIS_ADDRESS_SANITIZER
#endif
#ifdef __SANITIZE_THREAD__
#define KZGIS_THREAD_SANITIZER
#endif
#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define KZGIS_ADDRESS_SANITIZER
#endif
#if __has_feature(thread_sanitizer)
#define KZGIS_THREAD_SANITIZER
#endif
#endif

#endif

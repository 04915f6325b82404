# Compiler flags of everything built here.  The target is linked privately and never
# installed: a client's flags are the client's.

add_library(kzgis_build_flags INTERFACE)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  # Results are promised to the last bit: no fused multiply-adds, on any compiler.
  target_compile_options(kzgis_build_flags INTERFACE
    -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<BOOL:${KZGIS_WERROR}>:-Werror>
    -fstack-protector-strong)
  # The checked functions need optimisation: asked for without, they only warn.
  set(KZGIS_FORTIFIED_CONFIGS)
  foreach(config Debug Release RelWithDebInfo MinSizeRel)
    string(TOUPPER ${config} upper)
    if(NOT KZGIS_SANITIZE AND CMAKE_CXX_FLAGS_${upper} MATCHES "-O[1-9fgsz]")
      list(APPEND KZGIS_FORTIFIED_CONFIGS ${config})
    endif()
  endforeach()
  list(JOIN KZGIS_FORTIFIED_CONFIGS "," KZGIS_FORTIFIED_CONFIGS)
  if(KZGIS_FORTIFIED_CONFIGS)
    target_compile_definitions(kzgis_build_flags INTERFACE
      $<$<CONFIG:${KZGIS_FORTIFIED_CONFIGS}>:_FORTIFY_SOURCE=2>)
  endif()
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_link_options(kzgis_build_flags INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
  endif()
elseif(MSVC)
  target_compile_options(kzgis_build_flags INTERFACE /W4 /fp:precise /EHsc)
endif()

if(KZGIS_SANITIZE)
  target_compile_options(kzgis_build_flags INTERFACE
    -fsanitize=${KZGIS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kzgis_build_flags INTERFACE -fsanitize=${KZGIS_SANITIZE})
endif()

if(KZGIS_BUILD_FUZZERS)
  # The library tells libFuzzer which of its lines ran.
  target_compile_options(kzgis_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# One set of warnings for every target of the tree.
option(KELMOVIE_WERROR "Treat compiler warnings as errors" OFF)
if(MSVC)
  # The compiler reads sources in the system's code page and keeps an old __cplusplus by default.
  add_compile_options(/W4 /utf-8 /permissive- /Zc:__cplusplus)
  if(KELMOVIE_WERROR)
    add_compile_options(/WX)
  endif()
  add_compile_definitions(_USE_MATH_DEFINES) # for M_PI
else()
  add_compile_options(-Wall -Wextra -Wpedantic -Wshadow
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor> $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_compile_options(-Wno-gnu-zero-variadic-macro-arguments) # of Qt's logging macros
  endif()
  if(KELMOVIE_WERROR)
    add_compile_options(-Werror)
  endif()
endif()
add_compile_definitions(QT_DEPRECATED_WARNINGS QT_NO_CAST_TO_ASCII QT_NO_FOREACH)
if(WIN32)
  # windows.h declares everything up to Windows 10, in Unicode, without macros named like C++ functions.
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/windows/definitions.txt definitions)
  add_compile_definitions(${definitions})
endif()

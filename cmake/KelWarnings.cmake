# One set of warnings for every target of the tree; none is tolerated.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
add_compile_definitions(QT_DEPRECATED_WARNINGS QT_NO_CAST_TO_ASCII QT_NO_FOREACH)
if(WIN32)
  # What windows.h declares: everything up to Windows 10, in Unicode, without macros named like functions of C++.
  add_compile_definitions(_WIN32_WINNT=0x0A00 UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
endif()

# One set of warnings for every target of the tree; none is tolerated.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
add_compile_definitions(QT_DEPRECATED_WARNINGS QT_NO_CAST_TO_ASCII QT_NO_FOREACH)
if(WIN32)
  # What windows.h declares: everything up to Windows 10, in Unicode, without macros named like functions of C++.
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/windows/definitions.txt definitions)
  add_compile_definitions(${definitions})
endif()

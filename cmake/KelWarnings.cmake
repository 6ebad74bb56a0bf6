# One set of warnings for every target of the tree; none is tolerated.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
add_compile_definitions(QT_DEPRECATED_WARNINGS QT_NO_CAST_TO_ASCII QT_NO_FOREACH)

# kel_install_library(TARGET): a shared library for the component "runtime"; what only linking against it needs
# belongs to "development".
function(kel_install_library TARGET)
  install(TARGETS ${TARGET} EXPORT KelMovieTargets
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
endfunction()

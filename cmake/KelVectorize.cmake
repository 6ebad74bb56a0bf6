# kel_vectorize(SOURCES…): loops over pixels or samples in these files are worth the vector instructions that -O2
# omits. Other compilers vectorize at their usual level.
function(kel_vectorize)
  set_source_files_properties(${ARGN} PROPERTIES
    COMPILE_OPTIONS "$<$<AND:$<CXX_COMPILER_ID:GNU,Clang,AppleClang>,$<NOT:$<CONFIG:Debug>>>:-O3>")
endfunction()

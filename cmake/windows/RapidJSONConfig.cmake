# RapidJSON's headers are this machine's own. The directory that they lie in holds those of its C library, too, which a
# build for another system must not see: a link leads to RapidJSON's alone.
find_path(KELMOVIE_RAPIDJSON rapidjson/rapidjson.h PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(RAPIDJSON_INCLUDE_DIRS ${PROJECT_BINARY_DIR}/rapidjson)
file(MAKE_DIRECTORY ${RAPIDJSON_INCLUDE_DIRS})
file(CREATE_LINK ${KELMOVIE_RAPIDJSON}/rapidjson ${RAPIDJSON_INCLUDE_DIRS}/rapidjson SYMBOLIC)

# Uses this machine's RapidJSON headers. Their directory also contains those of the C library, which a cross build must
# not see, so a link exposes RapidJSON's only.
find_path(KELMOVIE_RAPIDJSON rapidjson/rapidjson.h PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(RAPIDJSON_INCLUDE_DIRS ${PROJECT_BINARY_DIR}/rapidjson)
file(MAKE_DIRECTORY ${RAPIDJSON_INCLUDE_DIRS})
file(CREATE_LINK ${KELMOVIE_RAPIDJSON}/rapidjson ${RAPIDJSON_INCLUDE_DIRS}/rapidjson SYMBOLIC)

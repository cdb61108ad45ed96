# Resources of orven.dll: the texts of base/messages.inc as string resources, under their own numbers, and the version.
configure_file(${PROJECT_SOURCE_DIR}/cmake/orven.rc.in ${PROJECT_BINARY_DIR}/orven.rc @ONLY)
set_source_files_properties(${PROJECT_BINARY_DIR}/orven.rc PROPERTIES
  INCLUDE_DIRECTORIES ${PROJECT_SOURCE_DIR}
  OBJECT_DEPENDS ${PROJECT_SOURCE_DIR}/base/messages.inc)
target_sources(orven PRIVATE ${PROJECT_BINARY_DIR}/orven.rc)

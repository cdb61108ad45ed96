# What a POSIX system alone can show of finished discs: memory that runs out, files that cannot grow.
if(UNIX)
  file(GLOB platform_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/posix/*.cpp)
  target_sources(disc_tests PRIVATE ${platform_sources} ${CMAKE_CURRENT_LIST_DIR}/../base/posix/failing_memory.cpp)
  # failing_memory.cpp stands in for them.
  target_link_options(disc_tests PRIVATE -Wl,--wrap=malloc,--wrap=calloc,--wrap=realloc)
endif()

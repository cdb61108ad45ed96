# What one platform alone can show of the base layer.
if(UNIX)
  file(GLOB platform_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/posix/*.cpp)
  target_sources(base_tests PRIVATE ${platform_sources})
  # posix/failing_memory.cpp stands in for them.
  target_link_options(base_tests PRIVATE -Wl,--wrap=malloc,--wrap=calloc,--wrap=realloc)
endif()

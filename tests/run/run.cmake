# What needs a system that says so: a source on read-only media, a file that vanishes within a call,
# paths longer than other systems take.
if(UNIX)
  file(GLOB platform_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/posix/*.cpp)
  target_sources(run_tests PRIVATE ${platform_sources})
  # posix/system.cpp stands in for them.
  target_link_options(run_tests PRIVATE -Wl,--wrap=statvfs,--wrap=open)
endif()

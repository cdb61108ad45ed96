# What a POSIX system alone can show of discs: memory that runs out, files that can't be read or written.
if(UNIX)
  file(GLOB platform_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/posix/*.cpp)
  target_sources(disc_tests PRIVATE ${platform_sources} ${CMAKE_CURRENT_LIST_DIR}/../base/posix/failing_memory.cpp)
  # posix/system.cpp and failing_memory.cpp stand in for them.
  target_link_options(disc_tests PRIVATE
    -Wl,--wrap=open,--wrap=read,--wrap=write,--wrap=lseek,--wrap=fstat,--wrap=malloc,--wrap=calloc,--wrap=realloc)
endif()

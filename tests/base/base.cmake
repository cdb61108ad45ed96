# What one platform alone can show of the base layer.
if(UNIX)
  file(GLOB platform_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/posix/*.cpp)
  target_sources(base_tests PRIVATE ${platform_sources})
endif()

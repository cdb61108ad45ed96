# The built program as a process, and those parts of it that need neither the system nor the library.
if(WIN32)
  set(process ${CMAKE_CURRENT_LIST_DIR}/win32/process.cpp ${CMAKE_CURRENT_LIST_DIR}/win32/png_decode.cpp)
else()
  set(process ${CMAKE_CURRENT_LIST_DIR}/posix/process.cpp ${CMAKE_CURRENT_LIST_DIR}/posix/running.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/spoiled.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/agreement_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/aob_process_test.cpp ${CMAKE_CURRENT_LIST_DIR}/posix/audio_agreement_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/extract_files_test.cpp ${CMAKE_CURRENT_LIST_DIR}/posix/mux_interrupt_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/png_decode.cpp ${CMAKE_CURRENT_LIST_DIR}/posix/preview_files_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/scan_files_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/posix/terminal_test.cpp)
endif()
target_sources(host_tests PRIVATE ${process})
target_link_libraries(host_tests PRIVATE orven_host orven_host_png)
target_compile_definitions(host_tests PRIVATE ORVEN_PROGRAM="$<TARGET_FILE:orven-cli>")
target_link_libraries(host_tests PRIVATE orven)
if(WIN32)   # beside the library
  set_target_properties(host_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
endif()
add_dependencies(host_tests orven-cli)

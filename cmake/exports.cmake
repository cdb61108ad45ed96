# The exported names live in one list, exports.txt. The version script and the .def file are made from it.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/exports.txt)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/exports.txt ORVEN_EXPORTS)

function(orven_exports target)
  if(WIN32)
    list(JOIN ORVEN_EXPORTS "\n    " names)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/orven.def CONTENT "LIBRARY orven.dll\nEXPORTS\n    ${names}\n")
    target_sources(${target} PRIVATE ${PROJECT_BINARY_DIR}/orven.def)
  else()
    list(JOIN ORVEN_EXPORTS ";\n        " names)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/orven.map
      CONTENT "{\n    global:\n        ${names};\n    local:\n        *;\n};\n")
    target_link_options(${target} PRIVATE -Wl,--version-script=${PROJECT_BINARY_DIR}/orven.map -Wl,-z,defs
      -Wl,-z,relro,-z,now)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${PROJECT_BINARY_DIR}/orven.map)
  endif()
endfunction()

# Warnings are errors, from the first day.
function(orven_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wundef -Wcast-qual -Wcast-align -Wformat=2
    -Wimplicit-fallthrough -Wdouble-promotion -Werror
    $<$<C_COMPILER_ID:GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op>
    # GCC 12 sees overlaps in its own std::string that are not there.
    $<$<C_COMPILER_ID:GNU>:-Wno-restrict>
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>)
endfunction()

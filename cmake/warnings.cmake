# Warnings are errors, from the first day.
function(orven_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wundef -Wcast-qual -Wcast-align -Wformat=2
    -Wimplicit-fallthrough -Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wdouble-promotion -Werror
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>)
endfunction()

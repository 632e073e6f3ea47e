# SPDX-License-Identifier: MIT
# qx_split_debug_file(target): what a debugger reads goes into TARGET'S-FILE.debug beside it, by whose name and sum
# debuggers find it; the file itself keeps what the system loads.
function(qx_split_debug_file target)
  set(debug_file "$<TARGET_FILE:${target}>.debug")
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND "${CMAKE_OBJCOPY}" --only-keep-debug "$<TARGET_FILE:${target}>" "${debug_file}"
    COMMAND "${CMAKE_OBJCOPY}" --strip-all "--add-gnu-debuglink=${debug_file}" "$<TARGET_FILE:${target}>"
    VERBATIM)
endfunction()

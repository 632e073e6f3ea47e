# SPDX-License-Identifier: MIT
# qx_split_debug_file(target): what a debugger reads goes into TARGET'S-FILE.debug beside it, by whose name and sum
# debuggers find it; the file itself keeps what the system loads.
set(QX_OBJCOPY "${CMAKE_OBJCOPY}")
if(WIN32)
  # GNU's writes the time of day into DLLs.
  find_program(QX_LLVM_OBJCOPY NAMES llvm-objcopy-14 llvm-objcopy REQUIRED)
  set(QX_OBJCOPY "${QX_LLVM_OBJCOPY}")
endif()

function(qx_split_debug_file target)
  set(file "$<TARGET_FILE:${target}>")
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND "${QX_OBJCOPY}" --only-keep-debug "${file}" "${file}.debug"
    COMMAND "${QX_OBJCOPY}" --strip-all "--add-gnu-debuglink=${file}.debug" "${file}"
    VERBATIM)
endfunction()

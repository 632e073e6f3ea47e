# SPDX-License-Identifier: MIT
# clang for Microsoft's ABI, with lld-link in the place of Microsoft's linker, and without SDK and C library. KERNEL32
# names an import library of Windows' own functions.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER clang-14)
set(CMAKE_C_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_LINKER lld-link-14)
set(CMAKE_MT true)  # CMake wants one; lld-link makes manifests itself
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_MSVC_RUNTIME_LIBRARY "")
set(CMAKE_C_STANDARD_LIBRARIES "${KERNEL32}" CACHE STRING "")
set(CMAKE_C_FLAGS_INIT "-ffreestanding -O1 -fno-stack-protector")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-nostdlib -fuse-ld=lld-link-14 -Wl,/entry:start,/subsystem:console")

# SPDX-License-Identifier: MIT
# Free Pascal's programs. For Windows its run-time library is compiled first, from the sources of the same version:
# Debian's compiler makes programs for both systems, without any other tool.
find_program(QX_FPC fpc REQUIRED)
set(options -Sew -O1)
set(rtl_units)
set(drive)
if(WIN32)
  file(GLOB sources "${CMAKE_SOURCE_DIR}/build/pascal/usr/share/fpcsrc/*/rtl")
  if(NOT sources)
    message(FATAL_ERROR "no sources of Pascal's run-time library in build/pascal: run tools/setup")
  endif()
  set(rtl "${out}/rtl")
  set(places_of_sources)
  foreach(folder IN ITEMS win64 inc x86_64 win win/wininc objpas objpas/sysutils objpas/classes)
    list(APPEND places_of_sources "-Fi${sources}/${folder}" "-Fu${sources}/${folder}")
  endforeach()
  set(compile ${QX_FPC} -Twin64 -n "-Fe${rtl}/messages.txt" -O1 "-FE${rtl}" "-Fu${rtl}" ${places_of_sources})
  set(rtl_units "${rtl}/classes.ppu")
  add_custom_command(OUTPUT ${rtl_units}
    COMMAND ${CMAKE_COMMAND} -E make_directory "${rtl}"
    COMMAND ${compile} -Us -Sg "${sources}/win64/system.pp"
    COMMAND ${compile} "${sources}/win64/sysinit.pp"
    COMMAND ${compile} "${sources}/inc/fpintres.pp"
    COMMAND ${compile} "${sources}/win64/classes.pp"
    VERBATIM)
  list(APPEND options -Twin64 -n "-Fu${rtl}")
  set(drive Z:)
  set(places "WINEPATH=${drive}$<TARGET_FILE_DIR:ZRM_QXKT32x64>" QX_DRIVE=${drive}
    "LOCPATH=${QX_LOCALES}" LC_ALL=${QX_LOCALE_1252})
else()
  list(APPEND places LC_ALL=C.UTF-8) # Pascal takes the encoding of file names from the locale
endif()

set(units "${bindings}/pascal/QXClient.pas" "${here}/pascal/Witnesses.pas")

# Units of a program are its own: two compilers that run at once would write the same.
function(qx_pascal_program name source)
  add_custom_command(OUTPUT "${out}/pascal/${name}${CMAKE_EXECUTABLE_SUFFIX}"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${out}/pascal/${name}.units"
    COMMAND ${QX_FPC} -v0ew -l- ${options} "-Fu${bindings}/pascal" "-Fu${here}/pascal" "-Fi${out}"
      "-FU${out}/pascal/${name}.units" "-FE${out}/pascal" "${source}"
    DEPENDS "${source}" ${units} "${out}/slotcalls.inc" ${rtl_units}
    VERBATIM)
endfunction()
qx_pascal_program(checks "${here}/pascal/checks.pas")
qx_pascal_program(Example "${bindings}/pascal/Example.pas")

set(checks "${out}/pascal/checks${CMAKE_EXECUTABLE_SUFFIX}")
set(example "${out}/pascal/Example${CMAKE_EXECUTABLE_SUFFIX}")
qx_binding_test(pascal
  CHECKS ${CMAKE_CROSSCOMPILING_EMULATOR} "${checks}" "${drive}$<TARGET_FILE:slot_probe>" "${drive}${library}"
  EXAMPLE ${CMAKE_CROSSCOMPILING_EMULATOR} "${example}"
  DEPENDS "${checks}" "${example}"
  ENVIRONMENT ${places})
if(WIN32)
  add_dependencies(bindings_pascal locale_1252)
endif()

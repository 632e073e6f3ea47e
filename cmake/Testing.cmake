# SPDX-License-Identifier: MIT
# What sanitizers look for beyond their defaults; the other presets take no notice.
set(QX_SANITIZER_ENVIRONMENT
  ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1
  TSAN_OPTIONS=second_deadlock_stack=1
  UBSAN_OPTIONS=print_stacktrace=1)

# Wine takes the code page of a program's narrow texts from the locale. These are made here: a machine has what its
# administrator chose. A target for each, which qx_test() names by the code page.
if(WIN32)
  find_program(QX_LOCALEDEF localedef REQUIRED)
  set(QX_LOCALES "${CMAKE_BINARY_DIR}/locale")
  foreach(pair 1252:en_US 932:ja_JP 65001:hi_IN)
    string(REGEX MATCH "^([0-9]+):(.+)$" pair "${pair}")
    set(code_page ${CMAKE_MATCH_1})
    set(QX_LOCALE_${code_page} "${CMAKE_MATCH_2}.UTF-8")
    set(locale "${QX_LOCALES}/${QX_LOCALE_${code_page}}")
    add_custom_command(OUTPUT "${locale}/LC_CTYPE"
      COMMAND ${CMAKE_COMMAND} -E make_directory "${QX_LOCALES}"
      COMMAND "${QX_LOCALEDEF}" -i ${CMAKE_MATCH_2} -f UTF-8 "${locale}"
      VERBATIM)
    add_custom_target(locale_${code_page} DEPENDS "${locale}/LC_CTYPE")
  endforeach()
endif()

# A developer's own proxies are no business of the tests'; a test that wants some names them in its ENVIRONMENT.
set(QX_PROXY_VARIABLES
  http_proxy https_proxy ftp_proxy all_proxy no_proxy HTTP_PROXY HTTPS_PROXY FTP_PROXY ALL_PROXY NO_PROXY)

# Sets `result` to whether this preset's sanitizer, if it has one, is among the named ones; without a name all are.
function(qx_sanitizer_matters result)
  foreach(name IN LISTS ARGN)
    if(NOT name MATCHES "^(address|thread|none)$")
      message(FATAL_ERROR "SANITIZERS ${ARGN}: ${name} is not known")
    endif()
  endforeach()
  if(QX_SANITIZE MATCHES "address|thread" AND ARGN AND NOT QX_SANITIZE IN_LIST ARGN)
    set(${result} FALSE PARENT_SCOPE)
  else()
    set(${result} TRUE PARENT_SCOPE)
  endif()
endfunction()

# qx_test(NAME name SOURCES files... [LIBS targets...] [LABELS unit|fixture|real|dll|storm...] [TIMEOUT seconds]
#         [ENVIRONMENT NAME=value...] [CODE_PAGE number] [SANITIZERS address|thread|none...]
#         [FIXTURE] [SERIAL] [SEPARATE] [SPINS])
#
# One program and one ctest entry per call: starting Wine once per case would cost more than the cases. With FIXTURE
# the program runs under the fixture server, whose port it finds in QX_FIXTURE_PORT. The label `dll` makes the shared
# library a dependency and gives its path in QX_LIBRARY. SERIAL: nothing else runs beside it.
# CODE_PAGE: that of the program's narrow texts under Wine (1252, 932, 65001); Linux has none.
# SEPARATE: its files have names in common and are never compiled together.
# SANITIZERS: those that find something in it; a preset with another one has no such program. Both without a word;
# "address" where all that it looks at happens on one thread, "none" where it is about the tests themselves.
# SPINS: callers that wait keep a processor busy, as the product's do; in other programs they sleep in each turn.
function(qx_test)
  cmake_parse_arguments(PARSE_ARGV 0 test "FIXTURE;SERIAL;SEPARATE;SPINS" "NAME;TIMEOUT;CODE_PAGE"
    "SOURCES;LIBS;LABELS;ENVIRONMENT;SANITIZERS")
  if(test_UNPARSED_ARGUMENTS OR NOT test_NAME OR NOT test_SOURCES)
    message(FATAL_ERROR "qx_test(${ARGV}): wrong arguments")
  endif()
  qx_sanitizer_matters(matters ${test_SANITIZERS})
  if(NOT matters)
    return()
  endif()
  if(NOT test_TIMEOUT)
    set(test_TIMEOUT 600)
  endif()
  if(QX_SANITIZE MATCHES "address|thread")
    math(EXPR test_TIMEOUT "${test_TIMEOUT} * 3") # a checked program is slower by about this
  endif()
  if(NOT test_LABELS)
    set(test_LABELS unit)
  endif()

  add_executable(${test_NAME} ${test_SOURCES})
  target_link_libraries(${test_NAME} PRIVATE ${test_LIBS} qx_testing qx_warnings)
  target_precompile_headers(${test_NAME} REUSE_FROM qx_testing)
  if(test_SEPARATE)
    set_target_properties(${test_NAME} PROPERTIES UNITY_BUILD OFF)
  endif()
  set_target_properties(${test_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests/bin")

  set(command ${CMAKE_CROSSCOMPILING_EMULATOR} "$<TARGET_FILE:${test_NAME}>")
  if(test_FIXTURE)
    list(APPEND test_LABELS fixture)
    list(PREPEND command "${CMAKE_SOURCE_DIR}/tests/fixture/run-with-fixture")
  endif()
  if("dll" IN_LIST test_LABELS)
    add_dependencies(${test_NAME} ZRM_QXKT32x64)
    list(APPEND test_ENVIRONMENT "QX_LIBRARY=$<$<BOOL:${WIN32}>:Z:>$<TARGET_FILE:ZRM_QXKT32x64>")
  endif()

  if(test_SPINS)
    list(APPEND test_ENVIRONMENT QX_SPINS=1)
  endif()
  if(test_CODE_PAGE AND WIN32)
    add_dependencies(${test_NAME} locale_${test_CODE_PAGE})
    list(APPEND test_ENVIRONMENT "LOCPATH=${QX_LOCALES}" LC_ALL=${QX_LOCALE_${test_CODE_PAGE}})
    list(APPEND test_LABELS code-page-${test_CODE_PAGE})
  endif()

  set(unset ${QX_PROXY_VARIABLES})
  foreach(setting IN LISTS test_ENVIRONMENT)
    string(REGEX REPLACE "=.*" "" name "${setting}")
    list(REMOVE_ITEM unset ${name})
  endforeach()
  list(TRANSFORM unset APPEND "=unset:")

  add_test(NAME ${test_NAME} COMMAND ${command})
  list(REMOVE_DUPLICATES test_LABELS)
  set_tests_properties(${test_NAME} PROPERTIES
    TIMEOUT ${test_TIMEOUT}
    LABELS "${test_LABELS}"
    ENVIRONMENT "${QX_SANITIZER_ENVIRONMENT};${test_ENVIRONMENT}"
    ENVIRONMENT_MODIFICATION "${unset}"
    SKIP_RETURN_CODE 77
    RUN_SERIAL ${test_SERIAL})
endfunction()

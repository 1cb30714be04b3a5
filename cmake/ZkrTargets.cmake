# Shared compile settings for every target of the project.
# Tests skip the Qt cast guards so that test tables can use plain literals.
function(zkr_strict target)
  cmake_parse_arguments(S "TEST" "" "" ${ARGN})
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
                                           -Wnon-virtual-dtor -Woverloaded-virtual)
  if(ZKR_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
  if(NOT S_TEST)
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
  endif()
endfunction()

# Makes any include of the named Qt modules an error in `target`, also the
# <QtWidgets/...> spelling that the Core include path would otherwise resolve:
# every header of those modules includes its module's config header, which we
# shadow with one that stops the build.
function(zkr_forbid_qt_modules target)
  set(guard_dir ${CMAKE_CURRENT_BINARY_DIR}/${target}_module_guard)
  foreach(module IN LISTS ARGN)
    string(TOLOWER ${module} lower)
    file(WRITE ${guard_dir}/Qt${module}/qt${lower}-config.h
         "#error \"${target} may use Qt Core only, not Qt ${module}\"\n")
  endforeach()
  target_include_directories(${target} BEFORE PRIVATE ${guard_dir})
endfunction()

# tarnvik_add_component(<name> [SOURCES ...] HEADERS ... [PUBLIC_DEPS ...] [PRIVATE_DEPS ...])
# Declares one layer or subsystem library, tarnvik::<name>, with its public headers as a
# header file set (installed from that set) and the project's warning flags. A component
# without sources is an interface library that only gathers headers and dependencies.
function(tarnvik_add_component name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
  set(target tarnvik_${name})
  if(ARG_SOURCES)
    add_library(${target} ${ARG_SOURCES})
    set(scope PUBLIC)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
    set_property(GLOBAL APPEND PROPERTY TARNVIK_COMPONENTS ${target})
    # Every symbol of the component must resolve in the component and what it links: a
    # call into a higher floor fails this link, whether or not a test reaches it.
    # (Not in the fuzzing build: clang leaves the sanitizer runtimes out of shared libraries.)
    if(NOT TARNVIK_FUZZ)
      add_library(${target}_link_check SHARED ${PROJECT_SOURCE_DIR}/cmake/link_check.cpp)
      target_link_libraries(${target}_link_check PRIVATE
                            "$<LINK_LIBRARY:WHOLE_ARCHIVE,${target}>" ${ARG_PUBLIC_DEPS}
                            ${ARG_PRIVATE_DEPS})
      target_link_options(${target}_link_check PRIVATE -Wl,--no-undefined)
    endif()
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
    target_link_libraries(${target} INTERFACE ${ARG_PUBLIC_DEPS})
    set_property(GLOBAL APPEND PROPERTY TARNVIK_INTERFACE_COMPONENTS ${target})
  endif()
  add_library(tarnvik::${name} ALIAS ${target})
  target_sources(${target} ${scope} FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src
                 FILES ${ARG_HEADERS})
  target_compile_features(${target} ${scope} cxx_std_20)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  install(TARGETS ${target} EXPORT TarnvikExtensionsTargets
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endfunction()

# tarnvik_add_test(<name> SOURCES ... DEPS ...)
# One GoogleTest executable, registered with CTest case by case.
function(tarnvik_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_compile_options(${name} PRIVATE -Wall -Wextra -Werror)
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gmock GTest::gtest_main)
  set(properties ENVIRONMENT "TARNVIK_TEST_DATA=${CMAKE_CURRENT_SOURCE_DIR}")
  if(ARG_LABELS)
    list(APPEND properties LABELS "${ARG_LABELS}")
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()

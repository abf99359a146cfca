# Settings that all targets of the project share.

if(CMAKE_SOURCE_DIR STREQUAL PROJECT_SOURCE_DIR)
  find_program(TESSERA_CCACHE ccache)
  if(TESSERA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${TESSERA_CCACHE}")
  endif()
  if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release)
  endif()
endif()

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

# Before 1.0 each minor version may change an interface.
set(TESSERA_SOVERSION ${PROJECT_VERSION_MAJOR})
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(TESSERA_SOVERSION 0.${PROJECT_VERSION_MINOR})
endif()

# The program finds the libraries relative to itself, in the build tree and in an installation.
file(RELATIVE_PATH TESSERA_LIB_FROM_BIN "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/${TESSERA_LIB_FROM_BIN}")
# Otherwise CMake puts an empty entry into the build tree's run path, and an empty entry means the current folder.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

# Programs are linked as position-independent ones.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

# Makes mistakes in memory harder to exploit; tests/program/hardening_test.py checks the result. The sanitizers find such mistakes
# themselves, and some of these options are in their way.
function(tessera_harden name)
  if(TESSERA_SANITIZE)
    return()
  endif()
  target_compile_options(${name} PRIVATE -fstack-protector-strong -fstack-clash-protection
    # The compiler may come with another level. Without optimisation there is none.
    "SHELL:$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3>")
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(${name} PRIVATE -fcf-protection=full)
  endif()
  target_link_options(${name} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack)
endfunction()

function(tessera_target name)
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_include_directories(${name} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tessera>")
  # GCC 12 reports overlapping copies in std::string concatenation (-Wrestrict) where there are none.
  target_compile_options(${name} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-fno-semantic-interposition>
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${TESSERA_WERROR}>:-Werror>)
  set_target_properties(${name} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  tessera_harden(${name})
  if(TESSERA_FUZZ)
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  if(TESSERA_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${TESSERA_SANITIZE} -fno-omit-frame-pointer
      -fno-sanitize-recover=all)
    target_compile_definitions(${name} PRIVATE TESSERA_SANITIZED)
    # RapidJSON's empty stacks add to null pointers.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=pointer-overflow>)
    target_link_options(${name} PRIVATE -fsanitize=${TESSERA_SANITIZE})
  endif()
endfunction()

# A library that is loaded on demand. Its file name contains the version, because its interface fits only the program that was
# built with it. It exports the functions whose C names begin with "tessera".
function(tessera_module name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME "${name}-${PROJECT_VERSION}" INSTALL_RPATH "$ORIGIN")
  tessera_target(${name})
  target_link_options(${name} PRIVATE "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/module_exports.map")
  set_target_properties(${name} PROPERTIES LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/module_exports.map")
endfunction()

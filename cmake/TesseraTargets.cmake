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
# built with it.
function(tessera_module name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME "${name}-${PROJECT_VERSION}" INSTALL_RPATH "$ORIGIN")
  tessera_target(${name})
endfunction()

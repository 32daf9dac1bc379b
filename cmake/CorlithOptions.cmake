# Compiler settings shared by every target of the project. The directory-wide options
# below reach only the targets of Corlith's own tree, never those of a host that adds
# it with add_subdirectory.

add_library(corlith_warnings INTERFACE)
target_compile_options(corlith_warnings INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor>)
if(CORLITH_WERROR)
  target_compile_options(corlith_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU,Clang>:-Werror>)
endif()
# GCC 12 reports -Wrestrict inside libstdc++'s own std::string code at -O2 and above for
# the everyday "text" + std::string (GCC bug 105329): a false alarm, fixed in GCC 13.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(corlith_warnings INTERFACE -Wno-restrict)
endif()

# GCC marks some template statics as "unique" symbols, and a library holding one can
# never be unloaded; hosts that load and unload Corlith at run time need it to go.
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

# Installed programs find the installed library through a run path relative to their
# own folder, so an installed tree works wherever it was put.
file(RELATIVE_PATH _corlith_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(CORLITH_INSTALL_RPATH "$ORIGIN/${_corlith_bin_to_lib}")

if(CORLITH_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "CORLITH_BUILD_FUZZ needs clang (configure with CXX=clang++)")
  endif()
  # Coverage for the fuzzer in every object; the fuzzer's main only in the targets.
  add_compile_options(-fsanitize=fuzzer-no-link)
  if(NOT CORLITH_SANITIZE)
    set(CORLITH_SANITIZE "address,undefined")
  endif()
endif()

if(CORLITH_SANITIZE)
  add_compile_options(-fsanitize=${CORLITH_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${CORLITH_SANITIZE})
endif()

# corlith_layer(NAME DEPENDS lower layers... SOURCES files...)
# Each layer is an OBJECT library that links only the layers below it; the shared
# library is assembled from their objects. A layer's test binary links the layer
# and the ones below, so using a higher layer fails to link.
function(corlith_layer name)
  cmake_parse_arguments(L "" "" "DEPENDS;SOURCES;LIBS" ${ARGN})
  add_library(corlith_${name} OBJECT ${L_SOURCES})
  target_include_directories(corlith_${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/src>)
  target_compile_features(corlith_${name} PUBLIC cxx_std_20)
  target_link_libraries(corlith_${name} PRIVATE corlith_warnings)
  foreach(dep IN LISTS L_DEPENDS)
    target_link_libraries(corlith_${name} PUBLIC corlith_${dep})
  endforeach()
  if(L_LIBS)
    target_link_libraries(corlith_${name} PUBLIC ${L_LIBS})
  endif()
endfunction()

# Flags that every target of the project shares, as the interface library kzb_flags.
#
# Results bind to the last bit: no -ffast-math, no contraction of a*b+c.
# The sanitizer presets add -Wno-maybe-uninitialized: g++ 12 sees ghosts in instrumented std::variant code.
add_library(kzb_flags INTERFACE)
target_compile_options(kzb_flags INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror -ffp-contract=off)
# Text and numbers convert alike under every locale of the host.
target_compile_definitions(kzb_flags INTERFACE
  BOOST_LEXICAL_CAST_ASSUME_C_LOCALE
  $<$<CONFIG:Release>:BOOST_UBLAS_NDEBUG>)

# One layer of the library: a static library from the sources of a folder below src/.
# kzb_layer(name FOLDER folder [WITHOUT folder] [USES layer...]); WITHOUT names a folder inside that is another layer.
function(kzb_layer name)
  cmake_parse_arguments(arg "" "FOLDER;WITHOUT" "USES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/src/${arg_FOLDER}/*.cpp ${PROJECT_SOURCE_DIR}/src/${arg_FOLDER}/*/*.cpp)
  if(arg_WITHOUT)
    list(FILTER sources EXCLUDE REGEX "/src/${arg_WITHOUT}/")
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} PUBLIC kzb_flags ${arg_USES})
endfunction()

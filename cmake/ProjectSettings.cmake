# Settings for the project's own targets only: a host that adds XKLinkDc as a subdirectory does
# not inherit our warnings.
add_library(xklinkdc_settings INTERFACE)
target_compile_options(xklinkdc_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Werror
  # Our results are compared bit for bit with an independent implementation; letting the compiler
  # fuse a*b+c into one instruction rounds once instead of twice and changes the last bits of
  # corner elevations and lens tips.
  -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 at -O3 reports string concatenations of the standard library ("a" + std::string) as
  # overlapping copies (its bug 105329); the report is false and would stop optimised builds.
  target_compile_options(xklinkdc_settings INTERFACE -Wno-restrict)
endif()

add_library(xklinkdc_sanitize INTERFACE)
if(XKLINKDC_SANITIZE)
  target_compile_options(xklinkdc_sanitize INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(xklinkdc_sanitize INTERFACE -fsanitize=address,undefined)
endif()

# Applies the project's compile settings to one of its own targets.
function(xklinkdc_apply_settings target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:xklinkdc_settings>
                                          $<BUILD_INTERFACE:xklinkdc_sanitize>)
endfunction()

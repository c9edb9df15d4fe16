# Warnings and sanitizers for every target of the project. Warnings are errors where HALCYRA_WARNINGS_AS_ERRORS is on, as in
# the presets; a build elsewhere should not fail for what another compiler thinks of.
add_library(halcyra_options INTERFACE)
target_include_directories(halcyra_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(halcyra_options INTERFACE
  -Wall -Wextra -Wpedantic $<$<BOOL:${HALCYRA_WARNINGS_AS_ERRORS}>:-Werror> -Wshadow -Wconversion -Wsign-conversion
  -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wcast-align)
# GCC 12 takes the copy in `"text" + string` for one that overlaps itself, and says so when it optimises.
target_compile_options(halcyra_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(HALCYRA_SANITIZE)
  target_compile_options(halcyra_options INTERFACE
    -fsanitize=${HALCYRA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(halcyra_options INTERFACE -fsanitize=${HALCYRA_SANITIZE})
endif()

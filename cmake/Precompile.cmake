# Headers that most files include take as long to read as the rest of them. Where HALCYRA_PRECOMPILE is on, a target
# reads them once: halcyra_precompile(target [further headers]). It is for whole builds, since compiler caches do not work
# with it. Files include what they use all the same; builds without it see to that.
function(halcyra_precompile target)
  if(HALCYRA_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE
      <algorithm> <array> <functional> <map> <memory> <optional> <span> <string> <string_view> <unordered_map> <utility>
      <vector> ${ARGN})
    # GCC 12 forgets of precompiled code that it is the system's, and warns of what it wrongly takes for overflows there.
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds>)
  endif()
endfunction()

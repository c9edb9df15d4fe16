# Headers that most files include take as long to read as the rest of them. Where HALCYRA_WHOLE_BUILD is on, a target reads
# them once and compiles its files by the dozen: halcyra_whole_build(target [further headers]). It is for builds from
# nothing, since compiler caches and changes of one file do not profit from it. Files include what they use and have names
# of their own all the same; builds without it see to the first. Files whose inner names others have too say so, with
# SKIP_UNITY_BUILD_INCLUSION.
set(HALCYRA_WHOLE_BUILD_BATCH 12)
function(halcyra_whole_build target)
  if(HALCYRA_WHOLE_BUILD)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${HALCYRA_WHOLE_BUILD_BATCH})
    target_precompile_headers(${target} PRIVATE
      <algorithm> <array> <functional> <map> <memory> <optional> <span> <string> <string_view> <unordered_map> <utility>
      <vector> ${ARGN})
    # GCC 12 forgets of precompiled code that it is the system's, and warns of what it wrongly takes for overflows there.
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds>)
  endif()
endfunction()

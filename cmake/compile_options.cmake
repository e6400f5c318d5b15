# Warnings for everybody, errors only for developers, hardening for the release.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat -Wformat-security
                    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor> $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>)
if(LLT_WERROR)
  add_compile_options(-Werror)
endif()
if(LLT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(LLT_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

add_compile_definitions(_GLIBCXX_ASSERTIONS)
if(CMAKE_BUILD_TYPE STREQUAL "Release" OR CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong
                      -ffunction-sections -fdata-sections)
  add_link_options(-Wl,--gc-sections -Wl,-z,relro,-z,now)
endif()

# The program starts once per command of a build, and the dynamic loader is half of its start-up:
# it is linked statically (position-independent, for address randomisation) where the system's
# libraries allow it. Measure with: hyperfine -N 'sh -c true' 'lltwrapper true'
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(LLT_STATIC AND NOT LLT_SANITIZE)
  include(CheckCXXSourceCompiles)
  set(CMAKE_REQUIRED_FLAGS -fPIE)
  set(CMAKE_REQUIRED_LINK_OPTIONS -static-pie)
  check_cxx_source_compiles("#include <string>\nint main(int c, char** v) { return std::string(v[0]).size() == unsigned(c); }"
                            LLT_STATIC_PIE)
  unset(CMAKE_REQUIRED_FLAGS)
  unset(CMAKE_REQUIRED_LINK_OPTIONS)
  if(NOT LLT_STATIC_PIE)
    message(STATUS "No static C++ libraries here: lltwrapper is linked dynamically and starts slower")
  endif()
endif()

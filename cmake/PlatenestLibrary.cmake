# Compile rules that every target of the project shares, and platenest_library(), which is all that the
# CMake file of a folder under src/ holds.

# Warnings and sanitizers belong to the build of the project, never to a host that links it.
add_library(platenest_build_flags INTERFACE)
target_compile_options(platenest_build_flags INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion
  $<$<BOOL:${PLATENEST_WARNINGS_AS_ERRORS}>:-Werror>)
if(PLATENEST_SANITIZE)
  target_compile_options(platenest_build_flags INTERFACE
    -fsanitize=${PLATENEST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(platenest_build_flags INTERFACE -fsanitize=${PLATENEST_SANITIZE})
endif()

# The rules of a target of ours: language level, one value per floating-point expression, warnings.
function(platenest_target_rules target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_compile_options(${target} PUBLIC -ffp-contract=off)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:platenest_build_flags>)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
endfunction()

# platenest_library(<name> SOURCES ... HEADERS ... [USES ...] [PUBLIC ...] [PRIVATE ...])
#   name     target platenest_<name>, alias platenest::<name>
#   HEADERS  public headers, below include/
#   USES     the folders that this one may include: the only way to another include root
#   PUBLIC   outside libraries that the public headers need; PRIVATE those that only the sources need
function(platenest_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;HEADERS;USES;PUBLIC;PRIVATE" ${ARGN})
  set(target platenest_${name})
  add_library(${target} ${arg_SOURCES})
  add_library(platenest::${name} ALIAS ${target})
  platenest_target_rules(${target})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    VERIFY_INTERFACE_HEADER_SETS ON)
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${arg_HEADERS})
  list(TRANSFORM arg_USES PREPEND platenest::)
  target_link_libraries(${target} PUBLIC ${arg_USES} ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
  install(TARGETS ${target} EXPORT platenestTargets FILE_SET HEADERS)
  set_property(GLOBAL APPEND PROPERTY PLATENEST_LIBRARIES ${name})
endfunction()

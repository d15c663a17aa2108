# Install and export: find_package(platenest CONFIG) and pkg-config platenest.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/platenest)

install(EXPORT platenestTargets NAMESPACE platenest:: DESTINATION ${package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/platenestConfig.cmake.in platenestConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(platenestConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/platenestConfig.cmake ${PROJECT_BINARY_DIR}/platenestConfigVersion.cmake
  DESTINATION ${package_dir})

# Static libraries resolve left to right: the umbrella's order is from the highest folder to the lowest.
get_property(libraries GLOBAL PROPERTY PLATENEST_LIBRARIES)
list(REVERSE libraries)
list(TRANSFORM libraries PREPEND -lplatenest_)
list(JOIN libraries " " PLATENEST_PC_LIBS)
# The prefix of the .pc file is found from its own place, so a moved installation still works.
file(RELATIVE_PATH PLATENEST_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" PLATENEST_PC_PREFIX "${PLATENEST_PC_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/platenest.pc.in platenest.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/platenest.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

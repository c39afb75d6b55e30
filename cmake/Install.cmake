# What `cmake --install` lays down. The prefix may be moved afterwards: nothing in it names an absolute path.
option(CORVANE_INSTALL "Install the library, its headers and the program" ${PROJECT_IS_TOP_LEVEL})
if(NOT CORVANE_INSTALL)
    return()
endif()
include(CMakePackageConfigHelpers)
set(corvanePackageDir ${CMAKE_INSTALL_LIBDIR}/cmake/corvane)

# Components: runtime (what a program needs), dev (what building one needs), tools (the program corvane).
install(TARGETS corvane corvane_c trevik EXPORT corvaneTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime # DLLs
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
install(DIRECTORY include/corvane include/trevik DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev
    FILES_MATCHING PATTERN "*.h")
install(FILES LICENSE NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

# find_package(corvane). Below 1.0 a new minor version may change the interface.
install(EXPORT corvaneTargets NAMESPACE corvane:: DESTINATION ${corvanePackageDir} COMPONENT dev)
configure_package_config_file(cmake/corvaneConfig.cmake.in corvaneConfig.cmake INSTALL_DESTINATION ${corvanePackageDir}
    NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(corvaneConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/corvaneConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/corvaneConfigVersion.cmake
    DESTINATION ${corvanePackageDir} COMPONENT dev)

# pkg-config corvane, corvane_c. The prefix is found from the place of the file itself.
file(RELATIVE_PATH corvanePrefixFromPkgConfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" corvanePrefixFromPkgConfig ${corvanePrefixFromPkgConfig})
foreach(library corvane corvane_c)
    configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endforeach()

# Installed programs find the library beside them. Holds for every target that is added after this line.
file(RELATIVE_PATH corvaneLibFromBin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set(CMAKE_INSTALL_RPATH $ORIGIN/${corvaneLibFromBin})

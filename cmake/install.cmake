# cmake --install: library, header, font, command-line tool, pkg-config file and CMake
# package configuration.
include(CMakePackageConfigHelpers)

install(TARGETS barcode_orv barcode_orv_static
  EXPORT barcode_orvTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/barcode_ffi.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(BARCODE_ORV_FONT_SOURCE)
  install(FILES ${BARCODE_ORV_FONT_SOURCE} DESTINATION ${CMAKE_INSTALL_DATADIR}/barcode_orv/fonts)
endif()
if(TARGET barcode-orv)
  install(TARGETS barcode-orv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# The installed package: relocatable, found under the prefix.
set(BARCODE_ORV_INSTALL_FILES ${CMAKE_BINARY_DIR}/install-files)
install(EXPORT barcode_orvTargets NAMESPACE barcode_orv::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/barcode_orv)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/barcode_orvConfig.cmake.in
  ${BARCODE_ORV_INSTALL_FILES}/barcode_orvConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/barcode_orv)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/barcode_orvConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${BARCODE_ORV_INSTALL_FILES}/barcode_orvConfig.cmake
              ${CMAKE_BINARY_DIR}/barcode_orvConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/barcode_orv)
set(BARCODE_ORV_PC_PREFIX "\${pcfiledir}/../..")
set(BARCODE_ORV_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
set(BARCODE_ORV_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/barcode_orv.pc.in ${BARCODE_ORV_INSTALL_FILES}/barcode_orv.pc @ONLY)
install(FILES ${BARCODE_ORV_INSTALL_FILES}/barcode_orv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The same package straight from the build tree (-Dbarcode_orv_DIR=build, or
# PKG_CONFIG_PATH=build): headers from the sources, libraries from the build.
export(EXPORT barcode_orvTargets NAMESPACE barcode_orv:: FILE ${CMAKE_BINARY_DIR}/barcode_orvTargets.cmake)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/barcode_orvConfig.cmake.in
  ${CMAKE_BINARY_DIR}/barcode_orvConfig.cmake
  INSTALL_DESTINATION ${CMAKE_BINARY_DIR} INSTALL_PREFIX ${CMAKE_BINARY_DIR})
set(BARCODE_ORV_PC_PREFIX "${CMAKE_BINARY_DIR}")
set(BARCODE_ORV_PC_LIBDIR "$<TARGET_FILE_DIR:barcode_orv>")
set(BARCODE_ORV_PC_INCLUDEDIR "${PROJECT_SOURCE_DIR}/include")
configure_file(${PROJECT_SOURCE_DIR}/cmake/barcode_orv.pc.in ${CMAKE_BINARY_DIR}/barcode_orv.pc.in-build @ONLY)
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/barcode_orv.pc INPUT ${CMAKE_BINARY_DIR}/barcode_orv.pc.in-build)

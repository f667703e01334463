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

install(EXPORT barcode_orvTargets NAMESPACE barcode_orv::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/barcode_orv)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/barcode_orvConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/barcode_orvConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/barcode_orv)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/barcode_orvConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/barcode_orvConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/barcode_orvConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/barcode_orv)

configure_file(${PROJECT_SOURCE_DIR}/cmake/barcode_orv.pc.in
  ${CMAKE_CURRENT_BINARY_DIR}/barcode_orv.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/barcode_orv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

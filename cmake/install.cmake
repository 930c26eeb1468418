# cmake --install: library, headers, kzb, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/KZBCalculator)

install(TARGETS KZBCalculator EXPORT KZBCalculatorTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET kzb)
  install(TARGETS kzb RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(DIRECTORY include/KZBCalculator DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KZBCalculatorTargets NAMESPACE KZBCalculator:: DESTINATION ${package_folder})

configure_package_config_file(cmake/KZBCalculatorConfig.cmake.in
  ${CMAKE_BINARY_DIR}/KZBCalculatorConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KZBCalculatorConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KZBCalculatorConfig.cmake ${CMAKE_BINARY_DIR}/KZBCalculatorConfigVersion.cmake
  DESTINATION ${package_folder})

configure_file(cmake/KZBCalculator.pc.in ${CMAKE_BINARY_DIR}/KZBCalculator.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/KZBCalculator.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

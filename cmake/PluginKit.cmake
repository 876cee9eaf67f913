# The plug-in kit: one header of service tables and entry points, installed with a CMake package
# so that a plug-in writes find_package(Tessarine) and links Tessarine::PluginKit (nothing of the
# kernel: a plug-in that linked it would get its own null globals).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

add_library(tess_plugin_kit INTERFACE)
add_library(Tessarine::PluginKit ALIAS tess_plugin_kit)
set_target_properties(tess_plugin_kit PROPERTIES EXPORT_NAME PluginKit)
target_include_directories(tess_plugin_kit INTERFACE
                           $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src/kit>
                           $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(tess_plugin_kit INTERFACE cxx_std_17)

set(tess_kit_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Tessarine)
install(TARGETS tess_plugin_kit EXPORT TessarineTargets COMPONENT PluginKit)
install(FILES ${PROJECT_SOURCE_DIR}/src/kit/tessarine/plugin.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarine COMPONENT PluginKit)
install(EXPORT TessarineTargets NAMESPACE Tessarine:: DESTINATION ${tess_kit_cmake_dir}
        COMPONENT PluginKit)
file(WRITE ${PROJECT_BINARY_DIR}/TessarineConfig.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/TessarineTargets.cmake)\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessarineConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessarineConfig.cmake
        ${PROJECT_BINARY_DIR}/TessarineConfigVersion.cmake DESTINATION ${tess_kit_cmake_dir}
        COMPONENT PluginKit)

# The library for other programs: libquillon-jet, static and shared, with its headers, a CMake
# package and a file for pkg-config. All of it is the component "jet".
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(jet_layers jet_format jet_index jet_storage jet_verify jet_dialect jet_engine)
set(jet_objects)
foreach(layer IN LISTS jet_layers)
    list(APPEND jet_objects $<TARGET_OBJECTS:${layer}>)
endforeach()
set(jet_includes
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quillon-jet>)

add_library(quillon_jet_static STATIC ${jet_objects})
add_library(quillon_jet_shared SHARED ${jet_objects})
foreach(kind static shared)
    set_target_properties(quillon_jet_${kind} PROPERTIES OUTPUT_NAME quillon-jet LINKER_LANGUAGE CXX)
    target_include_directories(quillon_jet_${kind} INTERFACE ${jet_includes})
    target_compile_features(quillon_jet_${kind} INTERFACE cxx_std_20)
endforeach()
set_target_properties(quillon_jet_static PROPERTIES EXPORT_NAME static)
target_link_libraries(quillon_jet_static INTERFACE SQLite::SQLite3 PkgConfig::utf8proc)

set(jet_map ${CMAKE_CURRENT_SOURCE_DIR}/package/quillon-jet.map)
set_target_properties(quillon_jet_shared PROPERTIES
    EXPORT_NAME quillon-jet
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINK_DEPENDS ${jet_map})
# By name: programs that link the shared library need not have what it is made of.
target_link_libraries(quillon_jet_shared PRIVATE ${SQLite3_LIBRARIES} ${utf8proc_LINK_LIBRARIES})
target_link_options(quillon_jet_shared PRIVATE LINKER:--version-script=${jet_map})

set(jet_cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/quillon-jet)
foreach(kind static shared)
    install(TARGETS quillon_jet_${kind} EXPORT quillon-jet-${kind}
        ARCHIVE COMPONENT jet
        LIBRARY COMPONENT jet NAMELINK_COMPONENT jet)
    install(EXPORT quillon-jet-${kind} NAMESPACE quillon-jet:: DESTINATION ${jet_cmake_folder}
        COMPONENT jet)
endforeach()
configure_package_config_file(package/quillon-jet-config.cmake.in quillon-jet-config.cmake
    INSTALL_DESTINATION ${jet_cmake_folder})
write_basic_package_version_file(quillon-jet-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/quillon-jet-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/quillon-jet-config-version.cmake
    DESTINATION ${jet_cmake_folder} COMPONENT jet)

file(RELATIVE_PATH QUILLON_JET_PREFIX_FROM_PC
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(package/quillon-jet.pc.in quillon-jet.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/quillon-jet.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT jet)

file(GLOB jet_headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
install(FILES ${jet_headers} ${PROJECT_BINARY_DIR}/generated/jet/version.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillon-jet/jet COMPONENT jet)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quillon-jet COMPONENT jet)

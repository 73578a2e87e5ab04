# What an installation consists of: the component `program`, and `window` for the desktop. Packages
# (cmake/packages.cmake) hold the same files.
include(GNUInstallDirs)
set(made ${PROJECT_BINARY_DIR}/packaging)
set(files ${PROJECT_SOURCE_DIR}/packaging/files)

install(TARGETS quillon COMPONENT program)
install(FILES ${made}/quillon.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES ${made}/quillon-settings.5.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man5
    COMPONENT program)

install(FILES ${made}/quillon.bash RENAME quillon COMPONENT program
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
# Where zsh looks depends on whether the installation is the system's own or somebody's.
install(CODE "
    set(made \"${made}\")
    set(data \"${CMAKE_INSTALL_DATADIR}\")" COMPONENT program)
install(CODE [[
    set(folder site-functions)
    if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        set(folder vendor-completions)
    endif()
    file(INSTALL "${made}/_quillon" DESTINATION "${CMAKE_INSTALL_PREFIX}/${data}/zsh/${folder}")]]
    COMPONENT program)
install(FILES ${made}/quillon.fish COMPONENT program
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# A run each night for who enables it.
install(FILES ${files}/quillon@.service ${files}/quillon@.timer DESTINATION lib/systemd/user
    COMPONENT program)

install(FILES ${files}/logrotate.conf DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
    COMPONENT program)
# It tells users what is new, which is what Debian calls news.
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
    RENAME NEWS.md COMPONENT program)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/manual DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT program FILES_MATCHING PATTERN "*.md")

if(QUILLON_BUILDS_WINDOW)
    get_directory_property(module_folder DIRECTORY app DEFINITION QUILLON_WINDOW_FOLDER)
    install(TARGETS quillon_window LIBRARY DESTINATION ${module_folder} COMPONENT window)
    install(FILES ${files}/quillon.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications
        COMPONENT window)
    install(FILES ${files}/quillon.svg COMPONENT window
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

# The Debian packages quillon and quillon-window, made by scripts/make-packages.
set(QUILLON_MAINTAINER "Quillon Shelfkeeper <quillon@example.org>" CACHE STRING
    "Name and address in packages")

# What each package says about itself; no part of other installations.
set(release ${PROJECT_VERSION}-1)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/files/changelog.in packaging/changelog.Debian @ONLY)
execute_process(COMMAND gzip -9nfk changelog.Debian
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR}/packaging COMMAND_ERROR_IS_FATAL ANY)

set(CPACK_COMPONENTS_ALL program)
if(QUILLON_BUILDS_WINDOW)
    list(APPEND CPACK_COMPONENTS_ALL window)
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PACKAGE_NAME quillon)
# Empty: otherwise the project's description would be the first line of every package's.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT "${QUILLON_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME quillon)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS quillon-window)
# Loaded only when covers become small, so nothing else tells that it is needed.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS libgd3)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
"keeps MP3 folders, a jukebox database, tags and playlists consistent
Brings a folder tree of MP3 files, the Access database of the jukebox software
that plays them, the tags in the files and the playlists in line. It reads and
writes the .mdb file itself, and a run that would remove a lot removes nothing
and says so.

This package has the program, its manual pages, completions for bash, zsh and
fish, and a timer for a run each night, which is off until a user enables it.")
set(CPACK_DEBIAN_WINDOW_PACKAGE_NAME quillon-window)
set(CPACK_DEBIAN_WINDOW_PACKAGE_DEPENDS "quillon (= ${release})")
set(CPACK_DEBIAN_WINDOW_DESCRIPTION
"desktop window for quillon
Shows a run of quillon, which keeps MP3 folders, a jukebox database, tags and
playlists consistent, in a window: its phases, how far they are, and errors.

Without it runs show a screen on the terminal, or plain lines.")
include(CPack)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(docs ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    install(FILES ${PROJECT_SOURCE_DIR}/packaging/files/copyright
        ${PROJECT_BINARY_DIR}/packaging/changelog.Debian.gz
        DESTINATION ${docs} COMPONENT ${component})
endforeach()

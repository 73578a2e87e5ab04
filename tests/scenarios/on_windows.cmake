# What of the scenarios is played by the program for Windows.
set(program ${PROJECT_SOURCE_DIR}/build/release/app/quillon)

# These are not, for what they need is not there.
# Another account, and rights of files that keep it out:
set(not_there add-files-refused backup-fails cover-folder-unreadable id3-write-trouble unreadable-folders)
# Symbolic links and named pipes, which Wine shows as what they lead to:
list(APPEND not_there links own-files-are-links)
# Names that only other systems have, or that differ in letter case alone:
list(APPEND not_there names-windows-cannot-hold look-alike-names awkward-names)
# Small pictures of covers:
list(APPEND not_there album-picker-modern)

file(GLOB scenarios RELATIVE ${CMAKE_CURRENT_LIST_DIR} CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.scenario)
list(TRANSFORM scenarios REPLACE "\\.scenario$" "")
list(REMOVE_ITEM scenarios ${not_there})
if(QUILLON_TEST_SYSTEM_ONLY)
    # What a run decides is the same on every system. Whether this one's files, names and failures bear it
    # is seen with one of each mode that the comparison below does not play,
    set(scenarios add-files covers-and-downloads embedded-art growing-library id3-update m3u-to-pla
        moved-music other-players playlists-only verify-duplicates verify-letters)
    # and with one of each kind of trouble.
    list(APPEND scenarios catalog-damaged cleared-out database-cut-short database-in-use
        library-root-missing make-remote-too-long odd-sizes plug-in-missing several-roots-away)
endif()
foreach(name IN LISTS scenarios)
    quillon_script_test(Scenario.${name} run_scenario.py
        ARGUMENTS ${program} ${CMAKE_CURRENT_LIST_DIR}/${name}.scenario)
    set_tests_properties(Scenario.${name} PROPERTIES
        ENVIRONMENT QUILLON_WINDOWS_PROGRAM=$<TARGET_FILE:quillon>)
endforeach()

# The same runs by both programs.
set(compared tree flat verify-tags playlists pla-to-m3u album-picker make-remote discs id3-write-both
    several-roots)
list(TRANSFORM compared REPLACE "(.+)" "${CMAKE_CURRENT_LIST_DIR}/\\1.scenario")
quillon_script_test(TwoSystems two_systems.py COST 60
    ARGUMENTS ${program} $<TARGET_FILE:quillon> ${compared})

# Ended from outside: a few moments each time, more of them by hand ("interrupted.py ... kill 50").
quillon_script_test(Interrupted.kill interrupted.py ARGUMENTS ${program} kill 12
    TIMEOUT 900 COST 60)
set_tests_properties(Interrupted.kill PROPERTIES ENVIRONMENT
    "QUILLON_WINDOWS_PROGRAM=$<TARGET_FILE:quillon>;QUILLON_TERMINATOR=$<TARGET_FILE:terminator>")

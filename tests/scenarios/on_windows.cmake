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

file(GLOB scenarios CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.scenario)
foreach(scenario IN LISTS scenarios)
    cmake_path(GET scenario STEM name)
    if(NOT name IN_LIST not_there)
        quillon_script_test(Scenario.${name} run_scenario.py ARGUMENTS ${program} ${scenario})
        set_tests_properties(Scenario.${name} PROPERTIES
            ENVIRONMENT QUILLON_WINDOWS_PROGRAM=$<TARGET_FILE:quillon>)
    endif()
endforeach()

# The same runs by both programs.
set(compared tree flat verify-tags playlists pla-to-m3u album-picker make-remote discs id3-write-both
    several-roots)
list(TRANSFORM compared REPLACE "(.+)" "${CMAKE_CURRENT_LIST_DIR}/\\1.scenario")
quillon_script_test(TwoSystems two_systems.py COST 60
    ARGUMENTS ${program} $<TARGET_FILE:quillon> ${compared})

# Ended from outside: a few moments each time, more of them by hand ("interrupted.py ... kill 50").
quillon_script_test(Interrupted.kill interrupted.py ARGUMENTS ${program} kill 12 COST 60)
set_tests_properties(Interrupted.kill PROPERTIES ENVIRONMENT
    "QUILLON_WINDOWS_PROGRAM=$<TARGET_FILE:quillon>;QUILLON_TERMINATOR=$<TARGET_FILE:terminator>")

# Runs the gallery with --help and --version where no window system can be reached: both must answer
# and exit 0. -DGALLERY=<program>
unset(ENV{DISPLAY})
unset(ENV{WAYLAND_DISPLAY})
unset(ENV{QT_QPA_PLATFORM})
foreach(option --help --version)
    execute_process(COMMAND ${GALLERY} ${option} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors TIMEOUT 60)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${option} exited with ${result}: ${errors}")
    endif()
    if(option STREQUAL "--help" AND NOT output MATCHES "--seed" OR option STREQUAL "--version" AND NOT output MATCHES "[0-9]+\\.[0-9]+")
        message(FATAL_ERROR "${option} printed: ${output}")
    endif()
endforeach()

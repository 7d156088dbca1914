# cmake -DDOXYGEN=<doxygen> -DDOXYFILE=<Doxyfile> -DWARNINGS=<log> -P RunDoxygen.cmake
# Runs Doxygen and, when it fails, prints the warnings it wrote to its log, so that the build output
# names the undocumented or broken place without a second look.
file(REMOVE ${WARNINGS})
execute_process(COMMAND ${DOXYGEN} ${DOXYFILE} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    set(warnings "")
    if(EXISTS ${WARNINGS})
        file(READ ${WARNINGS} warnings)
    endif()
    message(FATAL_ERROR "Doxygen failed (${result}); the API documentation must build without a warning:\n${warnings}")
endif()

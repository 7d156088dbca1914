# Fails when a catalog is not in line with its sources: runs lupdate on a copy and looks for what it
# marked. A text missing from the catalog comes in "unfinished"; one the sources no longer have becomes
# "vanished" (Qt 6) or "obsolete" (Qt 5); an entry left unfinished by hand stays "unfinished".
# cmake -DLUPDATE=... -DOPTIONS=... -DSOURCES=... -DCATALOG=... -DWORK=... -P checkcatalog.cmake
get_filename_component(name ${CATALOG} NAME)
file(MAKE_DIRECTORY ${WORK})
set(copy ${WORK}/${name})
configure_file(${CATALOG} ${copy} COPYONLY)
execute_process(COMMAND ${LUPDATE} ${OPTIONS} ${SOURCES} -ts ${copy}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "lupdate failed on ${name}:\n${output}")
endif()
file(STRINGS ${copy} marked REGEX "type=\"(unfinished|vanished|obsolete)\"")
if(marked)
    file(STRINGS ${copy} lines)
    set(report "")
    set(source "")
    foreach(line IN LISTS lines)
        if(line MATCHES "<source>(.*)</source>")
            set(source "${CMAKE_MATCH_1}")
        elseif(line MATCHES "type=\"(unfinished|vanished|obsolete)\"")
            string(APPEND report "  ${CMAKE_MATCH_1}: ${source}\n")
        endif()
    endforeach()
    message(FATAL_ERROR "${name} is not in line with the sources (run the lupdate target, then translate):\n${report}")
endif()
message(STATUS "${name}: every text translated")

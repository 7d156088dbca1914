# Calls whose names differ between Qt 5 and Qt 6, in one place.

# vandrel_add_translation(<qm-files-var> <ts-file>... [OPTIONS <lrelease options>...]): lrelease rules
# for the catalogs; a .ts file's OUTPUT_LOCATION property places its .qm.
function(vandrel_add_translation qm_files_var)
    if(QT_MAJOR_VERSION EQUAL 6)
        qt6_add_translation(qm_files ${ARGN})
    else()
        qt5_add_translation(qm_files ${ARGN})
    endif()
    set(${qm_files_var} ${qm_files} PARENT_SCOPE)
endfunction()

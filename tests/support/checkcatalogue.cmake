# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# Fails if a translation catalogue does not match the sources, or lacks a translation:
#   cmake -DLUPDATE=... -DSOURCES=... -DCATALOGUE=... -DWORK=... -P checkcatalogue.cmake
get_filename_component(name ${CATALOGUE} NAME)
file(MAKE_DIRECTORY ${WORK})
configure_file(${CATALOGUE} ${WORK}/${name} COPYONLY)
execute_process(COMMAND ${LUPDATE} -silent -locations none ${SOURCES} -ts ${WORK}/${name} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "lupdate failed: ${result}")
endif()
file(READ ${CATALOGUE} before)
file(READ ${WORK}/${name} after)
if(NOT before STREQUAL after)
    message(FATAL_ERROR "${name} is not what the sources hold; build the target update_translations, and translate")
endif()
if(after MATCHES "type=\"(unfinished|vanished|obsolete)\"" OR after MATCHES "<(translation|numerusform)></")
    message(FATAL_ERROR "${name} has texts that are not translated, or not in the sources any more")
endif()

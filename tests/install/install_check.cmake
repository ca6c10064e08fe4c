# Installs the build into a fresh prefix and starts the installed program
# offscreen: it must keep its files under the XDG data home (not beside
# bin/kelpa), or in the folder that --folder names.
# cmake -DBUILD=<build folder> -DWORK=<scratch folder> -P install_check.cmake
file(REMOVE_RECURSE "${WORK}")
set(prefix "${WORK}/prefix")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}"
                RESULT_VARIABLE rc OUTPUT_QUIET)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "cmake --install failed: ${rc}")
endif()

foreach(f bin/kelpa share/applications/kelpa.desktop share/metainfo/kelpa.metainfo.xml
          share/icons/hicolor/scalable/apps/kelpa.svg share/icons/hicolor/48x48/apps/kelpa.png
          share/icons/hicolor/256x256/apps/kelpa.png)
  if(NOT EXISTS "${prefix}/${f}")
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
if(DESKTOP_FILE_VALIDATE)
  execute_process(COMMAND "${DESKTOP_FILE_VALIDATE}" "${prefix}/share/applications/kelpa.desktop"
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0 OR NOT out STREQUAL "")
    message(FATAL_ERROR "desktop-file-validate: ${out}")
  endif()
endif()

# The component id is the program's plain name: there is no domain of ours to
# reverse, so that one hint is lowered to information.
find_program(APPSTREAMCLI appstreamcli)
if(APPSTREAMCLI)
  execute_process(COMMAND "${APPSTREAMCLI}" validate --no-net --override=cid-desktopapp-is-not-rdns=info
                          "${prefix}/share/metainfo/kelpa.metainfo.xml"
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "appstreamcli validate: ${out}")
  endif()
endif()

function(start_kelpa expected)
  execute_process(COMMAND "${CMAKE_COMMAND}" -E env QT_QPA_PLATFORM=offscreen "XDG_DATA_HOME=${WORK}/data"
                          "${prefix}/bin/kelpa" --quit-after-start ${ARGN}
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 30)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "kelpa ${ARGN} ended with ${rc}: ${out} ${err}")
  endif()
  if(NOT out MATCHES "Program folder: ${expected} " OR NOT EXISTS "${expected}/CONN.ZIG")
    message(FATAL_ERROR "kelpa ${ARGN}: expected its folder at ${expected}, said: ${out}")
  endif()
endfunction()

start_kelpa("${WORK}/data/kelpa")
start_kelpa("${WORK}/own" --folder "${WORK}/own")
if(EXISTS "${prefix}/bin/CONN.ZIG")
  message(FATAL_ERROR "the installed program wrote beside its executable")
endif()
file(REMOVE_RECURSE "${WORK}")

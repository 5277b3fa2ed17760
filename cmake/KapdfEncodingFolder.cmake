# The encoding folder of the fonts, fonts/etc/encoding beside the module. Its files are made from Debian's poppler-data. A
# machine without that package builds all the same: the folder is empty then, and text in predefined CJK encodings is not
# told apart.
find_path(KAPDF_CMAPS Adobe-Japan1/Adobe-Japan1-UCS2 PATHS /usr/share/poppler/cMap NO_DEFAULT_PATH
          NO_CMAKE_FIND_ROOT_PATH DOC "Folder of the CMap files of poppler-data")
set(cmaps)
if(KAPDF_CMAPS)
  file(GLOB_RECURSE cmaps ${KAPDF_CMAPS}/*)
else()
  message(WARNING "poppler-data is not installed (KAPDF_CMAPS): the encoding folder stays empty, and fonts with "
                  "predefined CJK encodings will not be understood")
endif()

set(folder ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/fonts/etc/encoding)
set(script ${CMAKE_CURRENT_LIST_DIR}/encoding_folder.cmake)
set(table ${PROJECT_SOURCE_DIR}/src/fonts/cmap_name_table.h)
set(stamp ${CMAKE_BINARY_DIR}/encoding_folder.stamp)
file(MAKE_DIRECTORY ${folder})
add_custom_command(
  OUTPUT ${stamp}
  COMMAND ${CMAKE_COMMAND} -DCMAPS=${KAPDF_CMAPS} -DTABLE=${table} -DFOLDER=${folder} -P ${script}
  COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
  DEPENDS ${script} ${table} ${cmaps}
  COMMENT "Filling the encoding folder"
  VERBATIM)
add_custom_target(kapdf_encoding_folder ALL DEPENDS ${stamp})

# cmake -DCMAPS=FOLDER -DTABLE=FILE -DFOLDER=FOLDER -P encoding_folder.cmake
# Fills FOLDER with a CMap file for each name in TABLE, from the files below CMAPS. Names are found there in any case.
# Without CMAPS nothing is made.
cmake_minimum_required(VERSION 3.24)
file(MAKE_DIRECTORY ${FOLDER})
if(NOT CMAPS)
  return()
endif()

file(GLOB_RECURSE files ${CMAPS}/*)
foreach(file ${files})
  get_filename_component(name ${file} NAME)
  string(TOLOWER ${name} key)
  set(file_${key} ${file})
endforeach()
# Names that differ by more than the case.
set(alias_GBK2K-EUC-H gbk2k-h)
set(alias_GBK2K-EUC-V gbk2k-v)
set(alias_KSCPC-UHC-H kscpc-euc-h)
set(alias_KSCPC-UHC-V kscpc-euc-v)
set(alias_UNIKS_UCS2-V uniks-ucs2-v)

set(names)
file(STRINGS ${TABLE} rows REGEX "(CMapName|OrderingMap){")
foreach(row ${rows})
  # An encoding's name stands first, a map to Unicode last.
  if(row MATCHES "CMapName{\"([^\"]+)\"")
    list(APPEND names ${CMAKE_MATCH_1})
  elseif(row MATCHES "\"([^\"]+)\"}")
    list(APPEND names ${CMAKE_MATCH_1})
  endif()
endforeach()
# They need no file: their code page tells all.
list(REMOVE_ITEM names WinAnsiEncoding MacRomanEncoding)

foreach(name ${names})
  string(TOLOWER ${name} key)
  if(DEFINED alias_${name})
    set(key ${alias_${name}})
  endif()
  if(NOT DEFINED file_${key})
    message(FATAL_ERROR "${CMAPS} has no file for ${name}")
  endif()
  file(READ ${file_${key}} text)
  # The reader knows no usecmap. A file whose name ends in V is read behind the one that ends in H; others take up the
  # text that they refer to.
  string(REGEX REPLACE "V$" "H" horizontal ${name})
  if(horizontal STREQUAL name OR NOT horizontal IN_LIST names)
    if(text MATCHES "/([^ \n]+) usecmap")
      string(TOLOWER ${CMAKE_MATCH_1} used)
      file(READ ${file_${used}} base)
      # Of two entries for a code the reader takes the one with the higher number: what is redefined has to go.
      string(REGEX MATCHALL "<[0-9a-f]+> +<[0-9a-f]+> +[0-9]" redefined "${text}")
      foreach(entry ${redefined})
        string(REGEX REPLACE " +[0-9]$" "" entry ${entry})
        string(REGEX REPLACE "${entry} +[0-9]+" "%" base "${base}")
      endforeach()
      string(PREPEND text "${base}\n")
    endif()
  endif()
  file(WRITE ${FOLDER}/${name} "${text}")
endforeach()

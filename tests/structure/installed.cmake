# Installs the build, moves the folder and uses it from there: cmake -DBUILD= -DFOLDER= -DRUN= -DSAMPLE= -DDEPENDENCIES= -P
# installed.cmake
#   RUN           what runs the program, if it needs that
#   DEPENDENCIES  vcpkg.json, which names the version, too
function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE result OUTPUT_VARIABLE text ERROR_VARIABLE text)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}: ${result}\n${text}")
  endif()
endfunction()

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
file(COPY_FILE ${SAMPLE} ${FOLDER}/plan.jsonl)
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${FOLDER}/first)
file(RENAME ${FOLDER}/first ${FOLDER}/second)
set(program second/bin/kapdf${SUFFIX})
run(${RUN} ${program} export plan.jsonl -o plan.pdf)
run(${RUN} ${program} info plan.pdf)

# One version: of program, module, documents and packages.
file(READ ${DEPENDENCIES} dependencies)
string(JSON version GET "${dependencies}" version-string)
execute_process(COMMAND ${RUN} ${program} --version WORKING_DIRECTORY ${FOLDER} OUTPUT_VARIABLE named)
execute_process(COMMAND ${RUN} ${program} info plan.pdf WORKING_DIRECTORY ${FOLDER} OUTPUT_VARIABLE told)
file(STRINGS ${FOLDER}/plan.pdf creator REGEX "Creator")
file(STRINGS ${BUILD}/CPackConfig.cmake packed REGEX "set\\(CPACK_PACKAGE_VERSION ")
string(REGEX MATCHALL "kapdf ${version}[\r\n]|version    ${version},|Version ${version}\\)|VERSION \"${version}\"\\)" same
       "${named} ${told} ${creator} ${packed}")
list(LENGTH same count)
if(NOT count EQUAL 4)
  message(FATAL_ERROR "not all are of version ${version}: ${same}\n${named}${told}${creator}\n${packed}")
endif()

# A host's build finds header, module and folder.
file(WRITE ${FOLDER}/host/CMakeLists.txt [[
cmake_minimum_required(VERSION 3.24)
project(host LANGUAGES NONE)
find_package(kaPDF ${version} EXACT REQUIRED)
get_target_property(headers kaPDF::headers INTERFACE_INCLUDE_DIRECTORIES)
get_target_property(module kaPDF::module IMPORTED_LOCATION)
foreach(file ${headers}/kapdf/kapdf.h ${module} ${kaPDF_FONTS_DIR}/etc/encoding)
  if(NOT EXISTS ${file})
    message(FATAL_ERROR "${file} is missing")
  endif()
endforeach()
]])
run(${CMAKE_COMMAND} -S ${FOLDER}/host -B ${FOLDER}/host/build -DCMAKE_PREFIX_PATH=${FOLDER}/second
    -Dversion=${version})

# What "cmake --install" puts where: the module into a directory of its own under the library
# directory, the tools into bin, their man pages into share/man/man1, and what the installed
# sandbox reads into share/em_tlraid. Only for use away from the target host: there the
# module lives at the host's own path, which no install rule names.
include(GNUInstallDirs)

set(TLR_MODULE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/em_tlraid)
# tools/sandbox/sandbox looks for its host facts here, relative to its own directory.
set(TLR_DATA_INSTALL_DIR ${CMAKE_INSTALL_DATADIR}/em_tlraid)

# The installed emhost finds the installed module by its place relative to its own.
file(RELATIVE_PATH TLR_MODULE_FROM_BIN ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_FULL_LIBDIR}/em_tlraid)
target_compile_definitions(emhost_core PRIVATE TLR_MODULE_FROM_BIN="${TLR_MODULE_FROM_BIN}")

install(TARGETS em_tlraid LIBRARY DESTINATION ${TLR_MODULE_INSTALL_DIR})
install(TARGETS emhost tlrcd-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(PROGRAMS tools/sandbox/sandbox DESTINATION ${CMAKE_INSTALL_BINDIR} RENAME tlr-sandbox)
install(FILES ${CMAKE_BINARY_DIR}/host-facts.sh DESTINATION ${TLR_DATA_INSTALL_DIR})

# Man pages made by help2man from each program's own --help, so that page and program say
# the same. TLR_MAN_PAGES: AUTO makes them where help2man is found, ON insists on it.
set(TLR_MAN_PAGES AUTO CACHE STRING "Make the man pages with help2man: AUTO, ON or OFF")
set(TLR_MAN_DIR ${CMAKE_BINARY_DIR}/man)
set(tlr_man_pages "")
if(TLR_MAN_PAGES)
  find_program(TLR_HELP2MAN help2man)
  if(NOT TLR_HELP2MAN AND NOT TLR_MAN_PAGES STREQUAL "AUTO")
    message(FATAL_ERROR "TLR_MAN_PAGES is ${TLR_MAN_PAGES}, but help2man is missing")
  elseif(NOT TLR_HELP2MAN)
    message(STATUS "help2man not found: no man pages")
  endif()
endif()

# tlr_man_page(<name> <summary> <program> [DEPENDS ...]): man/<name>.1.gz from
# "<program> --help", the program being called <name>.
function(tlr_man_page name summary program)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  set(page ${TLR_MAN_DIR}/${name}.1)
  add_custom_command(OUTPUT ${page}.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${TLR_MAN_DIR}/bin
    COMMAND ${CMAKE_COMMAND} -E create_symlink ${program} ${TLR_MAN_DIR}/bin/${name}
    COMMAND ${CMAKE_COMMAND} -E env BUILD_DIR=${CMAKE_BINARY_DIR}
            ${TLR_HELP2MAN} --no-info --version-string=${PROJECT_VERSION}
            --name=${summary} --output=${page} ${TLR_MAN_DIR}/bin/${name}
    COMMAND gzip -9nf ${page}
    DEPENDS ${ARG_DEPENDS}
    COMMENT "Making the man page of ${name}"
    VERBATIM)
  set(tlr_man_pages ${tlr_man_pages} ${page}.gz PARENT_SCOPE)
endfunction()

if(TLR_HELP2MAN AND TLR_MAN_PAGES)
  tlr_man_page(emhost "host simulator that loads and drives the em_tlraid module"
               $<TARGET_FILE:emhost> DEPENDS emhost)
  tlr_man_page(tlrcd-sim "simulator of the RAID manager's REST daemon"
               $<TARGET_FILE:tlrcd-sim> DEPENDS tlrcd-sim)
  tlr_man_page(tlr-sandbox "run a command in a private test host"
               ${PROJECT_SOURCE_DIR}/tools/sandbox/sandbox
               DEPENDS ${PROJECT_SOURCE_DIR}/tools/sandbox/sandbox host_facts_file)
  add_custom_target(man_pages ALL DEPENDS ${tlr_man_pages})
  install(FILES ${tlr_man_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

# Everything that the install rules take, for builds of the packages alone.
add_custom_target(installables DEPENDS em_tlraid emhost tlrcd-sim host_facts_file)
if(TARGET man_pages)
  add_dependencies(installables man_pages)
endif()

# Installs the program kestrel as the component `command`.

install(TARGETS kestrel RUNTIME COMPONENT command)
install(FILES "${PROJECT_SOURCE_DIR}/command/survey.schema.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/kestrelcore" COMPONENT command)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/THIRD_PARTY_LICENSES"
        DESTINATION "${kestrelcore_docdir}-command" COMPONENT command)

# Man pages and completions go with their program.
function(kestrelcore_install_pages program component)
  install(FILES "${kestrelcore_pages_dir}/${program}.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
          COMPONENT ${component})
  install(FILES "${kestrelcore_pages_dir}/${program}.bash"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME "${program}"
          COMPONENT ${component})
  install(FILES "${kestrelcore_pages_dir}/_${program}"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" COMPONENT ${component})
  install(FILES "${kestrelcore_pages_dir}/${program}.fish"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT ${component})
endfunction()

if(NOT CMAKE_CROSSCOMPILING AND NOT WIN32)
  set(kestrelcore_pages_dir "${PROJECT_BINARY_DIR}/command/pages")
  kestrelcore_install_pages(kestrel command)
  if(KESTRELCORE_BUILD_HARNESS)
    kestrelcore_install_pages(kestrel-harness harness)
  endif()
endif()

# For the systems that run on many machines: docs/fleet.md.
if(NOT WIN32)
  set(fleet "${PROJECT_SOURCE_DIR}/packaging/fleet")
  install(PROGRAMS "${fleet}/kestrel.fact" "${fleet}/kestrel-report"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/kestrelcore/fleet" COMPONENT command)
  install(FILES "${fleet}/kestrel-metrics.service" "${fleet}/kestrel-metrics.timer"
                "${fleet}/kestrel-features.service"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/kestrelcore/fleet" COMPONENT command)
endif()

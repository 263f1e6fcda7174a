# Installs the program kestrel as the component `command`.

install(TARGETS kestrel RUNTIME COMPONENT command)
install(FILES "${PROJECT_SOURCE_DIR}/command/survey.schema.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/kestrelcore" COMPONENT command)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/THIRD_PARTY_LICENSES"
        DESTINATION "${kestrelcore_docdir}-command" COMPONENT command)

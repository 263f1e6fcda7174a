# Runs within cpack, between the installation into its temporary folder and the making of the packages.
# In the trees of Debian packages it puts documents where Debian wants them. In all trees it sets every
# time of modification to that of SOURCE_DATE_EPOCH, so that the same sources make the same bytes.

cmake_minimum_required(VERSION 3.25)

# Everything that is specific to the tree of one Debian package.
function(finish_debian_tree tree package)
  set(documents "${tree}/usr/share/doc/${package}")
  file(GLOB pages "${tree}/usr/share/doc/kestrelcore/*.md")
  list(FILTER pages EXCLUDE REGEX "CHANGELOG")
  file(GLOB installed "${tree}/usr/share/doc/kestrelcore*")
  foreach(page IN LISTS pages)
    file(COPY "${page}" DESTINATION "${documents}")
  endforeach()
  list(REMOVE_ITEM installed "${documents}")
  foreach(folder IN LISTS installed)
    file(REMOVE_RECURSE "${folder}")
  endforeach()

  file(REMOVE "${documents}/LICENSE" "${documents}/THIRD_PARTY_LICENSES") # both are in `copyright`

  set(source "${CMAKE_CURRENT_FUNCTION_LIST_DIR}")
  file(COPY "${source}/debian/copyright" DESTINATION "${documents}")
  file(COPY_FILE "${source}/../CHANGELOG.md" "${documents}/changelog")
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
  set(version "${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
  file(WRITE "${documents}/changelog.Debian"
       "kestrelcore (${version}) unstable; urgency=medium\n\n"
       "  * The changes of this release are in changelog.gz.\n\n"
       " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  if(EXISTS "${tree}/usr/share/zsh/site-functions")
    file(RENAME "${tree}/usr/share/zsh/site-functions" "${tree}/usr/share/zsh/vendor-completions")
  endif()
  file(GLOB_RECURSE manuals "${tree}/usr/share/man/*")
  execute_process(COMMAND gzip -9 --no-name "${documents}/changelog" "${documents}/changelog.Debian"
                          ${manuals} COMMAND_ERROR_IS_FATAL ANY)
  # The simulated runtimes are installed as files, so nothing has stripped them.
  file(GLOB runtimes "${tree}/usr/lib/*/kestrelcore/simulator/*/*.so.*")
  foreach(runtime IN LISTS runtimes)
    execute_process(COMMAND strip --strip-unneeded "${runtime}" COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND chmod 644 "${runtime}" COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  execute_process(COMMAND chmod --recursive go-w "${tree}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

if(CPACK_GENERATOR STREQUAL "DEB")
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" key)
    list(APPEND groups "${CPACK_COMPONENT_${key}_GROUP}")
  endforeach()
  list(REMOVE_DUPLICATES groups)
  foreach(group IN LISTS groups)
    string(TOUPPER "${group}" key)
    finish_debian_tree("${CPACK_TEMPORARY_DIRECTORY}/${group}"
                       "${CPACK_DEBIAN_${key}_PACKAGE_NAME}")
  endforeach()
endif()
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch --no-dereference
                          "--date=@$ENV{SOURCE_DATE_EPOCH}" {} + COMMAND_ERROR_IS_FATAL ANY)
endif()

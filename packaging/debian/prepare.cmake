# Run by cpack between the installation into its staging folder and the packing: what Debian wants otherwise
# than a plain `cmake --install` leaves it.

if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

set(usr "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr")
set(documents "${usr}/share/doc/quorvane")
file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/copyright" "${documents}/copyright")
file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/changelog" "${documents}/changelog")
file(REMOVE "${documents}/LICENSE")
file(MAKE_DIRECTORY "${usr}/share/lintian/overrides")
file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/lintian-overrides" "${usr}/share/lintian/overrides/quorvane")
file(RENAME "${usr}/share/zsh/site-functions" "${usr}/share/zsh/vendor-completions")

file(GLOB pages "${usr}/share/man/*/*")
execute_process(COMMAND gzip -9n "${documents}/changelog" ${pages} COMMAND_ERROR_IS_FATAL ANY)

# Whatever the umask of the builder.
execute_process(COMMAND chmod -R u=rwX,go=rX "${usr}" COMMAND_ERROR_IS_FATAL ANY)

# cpack runs this before it packs the installed files.

# Removes the section that names the compiler from the programs, as debhelper does; cpack's own
# stripping keeps it.
set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr)
file(GLOB_RECURSE files ${usr}/bin/* ${usr}/sbin/* ${usr}/lib/*/zephlin/*)
foreach(file IN LISTS files)
  if(NOT IS_SYMLINK ${file})
    execute_process(COMMAND strip --remove-section=.comment ${file} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()

# Folders were made with the umask of whoever runs cpack.
file(CHMOD_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY} DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# Run by cpack on the staged trees: what Debian wants otherwise than a plain install has it.
file(GLOB manuals ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man1/*.1)
if(manuals)
    execute_process(COMMAND gzip -9n ${manuals} COMMAND_ERROR_IS_FATAL ANY)
endif()
file(GLOB licences ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/LICENSE) # Debian keeps it in the file copyright
if(licences)
    file(REMOVE ${licences})
endif()

# qellib10_man_page(page component): a manual page of section 1 below the current folder, compressed.
find_program(QELLIB10_GZIP gzip REQUIRED)
function(qellib10_man_page page component)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${page})
  execute_process(COMMAND ${QELLIB10_GZIP} -9nc ${CMAKE_CURRENT_SOURCE_DIR}/${page}
    OUTPUT_FILE ${CMAKE_CURRENT_BINARY_DIR}/${page}.gz COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()

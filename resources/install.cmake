# What `cmake --install` puts in place besides the program: the desktop entry, the icon, the
# AppStream metainfo, the help pages, the compiled translations and the copyright file.
# The build tree gets the same share/corvane layout, so a Corvane run from there (and the tests)
# finds its help and translations as an installed one does.
include(GNUInstallDirs)
find_package(Qt6 6.4 REQUIRED COMPONENTS LinguistTools)

set(corvane_resources ${PROJECT_SOURCE_DIR}/resources)

# --- translations: compiled whenever corvane is built ---------------------------------------------
set(corvane_ts_files ${corvane_resources}/translations/corvane_de.ts)
set_source_files_properties(${corvane_ts_files} PROPERTIES OUTPUT_LOCATION ${CORVANE_BUILD_DATA_DIR}/translations)
qt_add_lrelease(corvane TS_FILES ${corvane_ts_files} QM_FILES_OUTPUT_VARIABLE corvane_qm_files)
install(FILES ${corvane_qm_files} DESTINATION ${CMAKE_INSTALL_DATADIR}/corvane/translations)

# --- help pages -----------------------------------------------------------------------------------
set(corvane_help_files help.css overview.html de/overview.html)
foreach(file ${corvane_help_files})
    configure_file(${corvane_resources}/help/${file} ${CORVANE_BUILD_DATA_DIR}/help/${file} COPYONLY)
    get_filename_component(folder ${file} DIRECTORY)
    install(FILES ${corvane_resources}/help/${file} DESTINATION ${CMAKE_INSTALL_DATADIR}/corvane/help/${folder})
endforeach()

# --- desktop integration --------------------------------------------------------------------------
# KWin grants its fake input only to the program an entry names by its absolute path: the
# path where this very install puts the binary, which `--prefix` and cpack may change after
# configuring, so the entry is written when installing.
install(CODE "
    set(bindir \"${CMAKE_INSTALL_BINDIR}\")
    if(NOT IS_ABSOLUTE \"\${bindir}\")
        set(bindir \"\${CMAKE_INSTALL_PREFIX}/\${bindir}\")
    endif()
    set(CORVANE_EXEC \"\${bindir}/corvane\")
    configure_file(\"${corvane_resources}/org.corvane.Corvane.desktop.in\"
        \"${CMAKE_CURRENT_BINARY_DIR}/org.corvane.Corvane.desktop\" @ONLY)
")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/org.corvane.Corvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${corvane_resources}/org.corvane.Corvane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${corvane_resources}/icons/corvane.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${corvane_resources}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})

# What `cmake --install` puts where: programs, data sheets, what desktop and shell need, manual pages, documents
# and licence.
# SPDX-License-Identifier: MIT
set(velmora_icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(TARGETS velmora velmora-sim velmora-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY share/velmora DESTINATION ${CMAKE_INSTALL_DATADIR})
install(FILES packaging/velmora.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/example.velmora.velmora.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES packaging/velmora-mime.xml RENAME velmora.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(DIRECTORY packaging/icons/hicolor/ DESTINATION ${velmora_icons})
install(FILES src/images/program.svg RENAME velmora.svg DESTINATION ${velmora_icons}/scalable/apps)
install(FILES src/images/document.svg RENAME velmora-data-sheet.svg DESTINATION ${velmora_icons}/scalable/mimetypes)
install(FILES packaging/velmora-cli.bash RENAME velmora-cli
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES packaging/velmora.1 packaging/velmora-cli.1 packaging/velmora-sim.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES LICENSE README.md CONTRIBUTING.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

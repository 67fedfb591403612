# What `cmake --install` puts where: programs, sample sheet, desktop entry, icons, manual pages and licence.
# SPDX-License-Identifier: MIT
install(TARGETS velmora velmora-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES share/velmora/velmora-demo.eds DESTINATION ${CMAKE_INSTALL_DATADIR}/velmora)
install(FILES packaging/velmora.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/velmora.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES src/images/program.svg RENAME velmora.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES packaging/velmora.png
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/256x256/apps)
install(FILES packaging/velmora.1 packaging/velmora-sim.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES LICENSE README.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

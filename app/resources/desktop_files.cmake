# What makes the program known to desktops: its entry, its icon and its description; included by the
# list file beside it. The pictures are drawn from the icon at each size.
set(desktop "${CMAKE_CURRENT_SOURCE_DIR}/resources/desktop")
set(icons "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
install(FILES "${desktop}/org.zqticker.Ticker.desktop"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${desktop}/org.zqticker.Ticker.metainfo.xml"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES "${desktop}/icons/org.zqticker.Ticker.svg" DESTINATION "${icons}/scalable/apps")
foreach(size 16 22 24 32 48 64 128 256)
  install(
    FILES "${desktop}/icons/org.zqticker.Ticker-${size}.png"
    DESTINATION "${icons}/${size}x${size}/apps"
    RENAME org.zqticker.Ticker.png)
endforeach()

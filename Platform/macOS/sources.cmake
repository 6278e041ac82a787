# The sources of this folder, which Tests/macOS compiles as well.
set(PLATFORM_MACOS_SOURCES
  Bridge.mm
  MacApplication.mm
  MacDispatch.mm
  MacEventTaps.mm
  MacHidDevices.mm
  MacMenu.mm
  MacPlatform.mm
  MacServices.mm
  MacStatusBar.mm
  MacUpdater.mm
  MacWindows.mm
  NativeViews.mm)
list(TRANSFORM PLATFORM_MACOS_SOURCES PREPEND ${CMAKE_CURRENT_LIST_DIR}/)

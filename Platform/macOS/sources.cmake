# The sources of this folder, which Tests/macOS compiles as well.
set(PLATFORM_MACOS_SOURCES
  ActionTarget.mm
  Appearance.mm
  DeviceNotification.mm
  HidInput.mm
  LayerView.mm
  MacAlerts.mm
  MacApplication.mm
  MacClock.mm
  MacDispatch.mm
  MacEventTaps.mm
  MacLoginService.mm
  MacMenu.mm
  MacPlatform.mm
  MacProcessInfo.mm
  MacStatusBar.mm
  MacSystemLog.mm
  MacUpdater.mm
  MacUserDefaults.mm
  MacWindow.mm
  MacWorkspace.mm
  NativeViews.mm
  RunningApplications.mm
  Text.mm)
list(TRANSFORM PLATFORM_MACOS_SOURCES PREPEND ${CMAKE_CURRENT_LIST_DIR}/)

# What runs on a Mac as well as on the stand-ins. Support/Mac.h has a body for each: RealMac.mm, and
# StandInMac.mm. On a Mac each test is a process of its own, since an application launches once.
set(MAC_TEST_SUPPORT_SOURCES
  ../Support/FakeHidutil.cpp
  Support/MacTest.mm)
set(MAC_APPLICATION_TEST_SOURCES
  LaunchTest.mm
  MenuActionsTest.mm
  TapTestTest.mm)
set(MAC_CONTRACT_DESKTOP_SOURCES
  MacContractDesktop.mm
  ShownViews.mm)
foreach(list MAC_TEST_SUPPORT_SOURCES MAC_APPLICATION_TEST_SOURCES MAC_CONTRACT_DESKTOP_SOURCES)
  list(TRANSFORM ${list} PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
endforeach()

# What a Mac does not do without its user: keyboards are plugged by hand, keys are pressed by hand,
# and login items are the user's. A filter of GoogleTest's.
set(MAC_CONTRACT_TESTS_WITHOUT_HANDS
  "-InputTest.*:LoginServiceTest.*:DevicesTest.EachThatAppearsIsTold:DevicesTest.AnObservation*")

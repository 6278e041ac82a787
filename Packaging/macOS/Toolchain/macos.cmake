# macOS from Linux: Debian's clang and lld, and a folder in place of Apple's SDK.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22)

set(llvm /usr/lib/llvm-16/bin)
if(NOT EXISTS ${llvm}/clang++ OR NOT EXISTS ${llvm}/ld64.lld OR NOT EXISTS ${llvm}/llvm-lipo)
  message(FATAL_ERROR "Install clang-16, lld-16 and llvm-16, or let ./run macos do it.")
endif()
execute_process(COMMAND /usr/bin/python3 -B ${CMAKE_CURRENT_LIST_DIR}/make_sdk.py
  COMMAND_ERROR_IS_FATAL ANY)
cmake_path(SET sdk NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../../build/macos-sdk)
set(CMAKE_OSX_SYSROOT ${sdk} CACHE PATH "The replacement of Apple's SDK")

foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET arm64-apple-macos)
  set(CMAKE_${language}_FLAGS_INIT "-B${sdk}/tools")
  # llvm-ar makes no index of universal objects.
  set(CMAKE_${language}_CREATE_STATIC_LIBRARY
    "<CMAKE_COMMAND> -E rm -f <TARGET>"
    "${llvm}/llvm-libtool-darwin -static -o <TARGET> <OBJECTS>")
endforeach()
set(CMAKE_C_COMPILER ${llvm}/clang)
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER ${llvm}/clang++)
  string(APPEND CMAKE_${language}_FLAGS_INIT " -stdlib=libc++")
endforeach()
foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_LINK_EXECUTABLE
    "/usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/link_universal.py <CMAKE_${language}_COMPILER> <FLAGS> <CMAKE_${language}_LINK_FLAGS> <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES>")
endforeach()
# lld signs programs for arm64 without being asked.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -Wl,-adhoc_codesign")
set(CMAKE_INSTALL_NAME_TOOL ${llvm}/llvm-install-name-tool)

set(CMAKE_FIND_ROOT_PATH ${sdk})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

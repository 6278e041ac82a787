"""Writes the text stubs that a linker takes for Apple's libraries: install names and symbols."""

from __future__ import annotations

import pathlib
import re
import subprocess

from declarations import Declarations, Type

# The frameworks that may be linked, and the version in each one's install name.
FRAMEWORK_VERSIONS = {"AppKit": "C", "CoreFoundation": "A", "CoreGraphics": "A",
                      "Foundation": "C", "IOKit": "A", "QuartzCore": "A",
                      "ServiceManagement": "A"}
# These have no Objective-C classes of their own names.
IN_C = ("CoreFoundation", "CoreGraphics", "IOKit")
TARGETS = "targets: [ x86_64-macos, arm64-macos ]"
OBJECTIVE_C = "/usr/lib/libobjc.A.dylib"

# What compilers call by themselves, which no header declares (clang, CGObjCMac.cpp).
OBJECTIVE_C_HELPERS = """
    objc_alloc objc_allocWithZone objc_alloc_init objc_autorelease objc_autoreleasePoolPop
    objc_autoreleasePoolPush objc_autoreleaseReturnValue objc_begin_catch objc_copyCppObjectAtomic
    objc_copyStruct objc_end_catch objc_enumerationMutation objc_exception_rethrow
    objc_exception_throw objc_getProperty objc_msgSend objc_msgSendSuper objc_msgSendSuper2
    objc_msgSendSuper2_stret objc_msgSend_fpret objc_msgSend_stret objc_opt_class
    objc_opt_isKindOfClass objc_opt_new objc_opt_respondsToSelector objc_opt_self objc_release
    objc_retain objc_retainAutorelease objc_retainAutoreleasedReturnValue objc_setProperty
    objc_setProperty_nonatomic objc_setProperty_nonatomic_copy objc_storeStrong objc_sync_enter
    objc_sync_exit __objc_personality_v0 _objc_empty_cache _objc_empty_vtable""".split()
RUNTIME_PREFIXES = ("class_", "imp_", "ivar_", "method_", "object_", "objc_", "property_",
                    "protocol_", "sel_")

# Debian's build of LLVM 14. Apple's of macOS 13 is newer, and libc++ keeps its symbols.
CXX_LIBRARIES = ("/usr/lib/llvm-14/lib/libc++.so.1", "/usr/lib/llvm-14/lib/libc++abi.so.1")


def write_stubs(declarations: Declarations, sdk: pathlib.Path) -> None:
    for framework, version in FRAMEWORK_VERSIONS.items():
        text = (declarations.types_folder / f"{framework}.d.ts").read_text()
        symbols = [name for name in re.findall(r"^declare function (\w+)\(", text, re.MULTILINE)
                   if name in declarations.functions]
        symbols += [name for name in re.findall(r"^declare const (\w+):", text, re.MULTILINE)
                    if isinstance(declarations.constants.get(name), Type)]
        classes = [] if framework in IN_C else [
            name for name in re.findall(r"^declare class (\w+)", text, re.MULTILINE)
            if name in declarations.classes and name != "NSObject"]
        reexported = []
        if framework == "CoreFoundation":
            symbols.append("__CFConstantStringClassReference")
        if framework == "Foundation":
            reexported = ["/System/Library/Frameworks/CoreFoundation.framework/Versions/A/"
                          "CoreFoundation", OBJECTIVE_C]
        bundle = f"System/Library/Frameworks/{framework}.framework"
        _write(sdk / bundle / f"{framework}.tbd", f"/{bundle}/Versions/{version}/{framework}",
               symbols, classes, reexported)
        # Where the linker looks for what another library exports again.
        versioned = sdk / bundle / "Versions" / version
        versioned.mkdir(parents=True)
        (versioned / f"{framework}.tbd").symlink_to(f"../../{framework}.tbd")
    runtime = [name for name in declarations.functions if name.startswith(RUNTIME_PREFIXES)]
    _write(sdk / "usr/lib/libobjc.tbd", OBJECTIVE_C, runtime + OBJECTIVE_C_HELPERS,
           ["NSObject", "Protocol"])
    (sdk / "usr/lib/libobjc.A.tbd").symlink_to("libobjc.tbd")
    _write(sdk / "usr/lib/libc++.tbd", "/usr/lib/libc++.1.dylib", _cxx_symbols())


def _cxx_symbols() -> list[str]:
    listing = subprocess.run(["llvm-nm-16", "--dynamic", "--defined-only", "--format=just-symbols",
                              *CXX_LIBRARIES], check=True, capture_output=True, text=True).stdout
    return [line for line in listing.splitlines() if re.fullmatch(r"_[ZU_]\w+", line)]


def _write(path: pathlib.Path, install_name: str, symbols: list[str],
           classes: list[str] | tuple[str, ...] = (), reexported: list[str] | tuple[str, ...] = ()
           ) -> None:
    def quoted(names) -> str:
        return ", ".join(f"'{name}'" for name in sorted(set(names)))

    lines = ["--- !tapi-tbd", "tbd-version: 4", TARGETS, f"install-name: '{install_name}'",
             "current-version: 1"]
    if reexported:
        lines += ["reexported-libraries:", f"  - {TARGETS}",
                  f"    libraries: [ {quoted(reexported)} ]"]
    lines += ["exports:", f"  - {TARGETS}",
              f"    symbols: [ {quoted('_' + symbol for symbol in symbols)} ]"]
    if classes:
        lines.append(f"    objc-classes: [ {quoted(classes)} ]")
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join([*lines, "...", ""]))

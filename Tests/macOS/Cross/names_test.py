"""Every name of Apple's that Zephlin.app uses is in the declarations of the SDK, and means the same."""

from __future__ import annotations

import re
import unittest

import mach_o
from apple_api import BUILD, examine_room, load_declarations
from declarations import Type

PROGRAM = BUILD / "bin/Zephlin.app/Contents/MacOS/Zephlin"

# Names that the declarations do not hold, and why that is well.
EXCEPTIONS = {
    "NSEdgeInsetsMake": "an inline function of Foundation's headers",
    "NSMakeRect": "an inline function of Foundation's headers",
    "IO_OBJECT_NULL": "a macro: 0, like MACH_PORT_NULL (mach/port.h)",
    "KERN_SUCCESS": "a macro, also in Apple's mach/kern_return.h, which is compiled beside it",
    "NS_UNAVAILABLE": "a macro for the compiler alone",
    "kIOFirstMatchNotification": "a macro: the documented name of the notification",
    "kIOHIDDeviceUsageKey": "a macro: the documented key, which TapTestTest looks at",
    "kIOHIDDeviceUsagePageKey": "a macro: the documented key, which TapTestTest looks at",
    "kIOHIDElementUsageKey": "a macro: the documented key, which TapTestTest looks at",
    "kIOHIDElementUsagePageKey": "a macro: the documented key, which TapTestTest looks at",
    "kIOReturnSuccess": "a macro: KERN_SUCCESS",
}

# Selectors of Sparkle's, which the bundle may hold; Platform/macOS declares them itself.
SPARKLE = {"initWithStartingUpdater:updaterDelegate:userDriverDelegate:", "checkForUpdates:"}

# What compilers call without a declaration (clang's documentation of ARC, and its CGObjCMac.cpp).
COMPILER_HELPERS = re.compile(
    r"_objc_(alloc|allocWithZone|alloc_init|autorelease|autoreleasePoolPop|autoreleasePoolPush|"
    r"begin_catch|copyCppObjectAtomic|end_catch|enumerationMutation|exception_rethrow|"
    r"exception_throw|getProperty|msgSend\w*|opt_\w+|release|retain\w*|setProperty\w*|storeStrong)|"
    r"__objc_empty_cache|__objc_empty_vtable|___objc_personality_v0|"
    r"___CFConstantStringClassReference")


class NamesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.declarations = load_declarations()
        cls.usage = examine_room()

    def test_each_name_in_the_sources_is_declared(self) -> None:
        counts: dict[str, int] = {}
        for name, files in self.usage.names.items():
            counts[name.kind] = counts.get(name.kind, 0) + 1
            with self.subTest(name=name.spelling, files=sorted(files)):
                self.assertTrue(self.is_declared(name) or name.spelling in EXCEPTIONS,
                                "no such name in the declarations of the SDK")
        print("names in the sources:", counts)

    def test_each_enumerator_has_apples_value(self) -> None:
        values = {name: value for members in self.declarations.enumerators.values()
                  for name, value in members.items()}
        values |= {name: value for name, value in self.declarations.constants.items()
                   if isinstance(value, int)}
        for name in self.usage.names:
            if name.kind == "enumerator":
                with self.subTest(name=name.spelling):
                    self.assertEqual(values.get(name.spelling), name.value)

    def test_each_exception_is_needed(self) -> None:
        used = {name.spelling: name for name in self.usage.names}
        for exception in EXCEPTIONS:
            with self.subTest(exception=exception):
                self.assertIn(exception, used)
                self.assertFalse(self.is_declared(used[exception]))

    def test_each_method_that_is_implemented_for_apple_is_one_that_apple_calls(self) -> None:
        self.assertTrue(self.usage.implementations)
        for method in self.usage.implementations:
            with self.subTest(owner=method.owner, selector=method.selector):
                self.assertTrue(any(self.declarations.method(parent, method.selector,
                                                             method.is_static)
                                    for parent in method.parents),
                                f"neither declared by Zephlin nor a method of {method.parents}")

    def test_each_selector_in_the_program_is_declared(self) -> None:
        for architecture in mach_o.architectures(PROGRAM):
            sent = mach_o.selectors_sent(PROGRAM, architecture)
            own = mach_o.selectors_implemented(PROGRAM, architecture)
            self.assertGreater(len(sent), 100)
            print(f"selectors in the program for {architecture}: {len(sent)}")
            for selector in sent:
                with self.subTest(architecture=architecture, selector=selector):
                    self.assertTrue(selector in self.declarations.selectors or selector in own
                                    or selector in SPARKLE, "no such selector in the SDK")

    def test_each_symbol_that_the_program_takes_from_a_framework_is_declared(self) -> None:
        for architecture in mach_o.architectures(PROGRAM):
            imports = [each for each in mach_o.imports(PROGRAM, architecture)
                       if each.library not in ("libSystem", "libc++")]
            self.assertGreater(len(imports), 50)
            print(f"symbols from frameworks for {architecture}: {len(imports)}")
            for each in imports:
                with self.subTest(architecture=architecture, symbol=each.symbol):
                    self.assertTrue(self.is_declared_symbol(each.symbol),
                                    f"no such symbol in {each.library}'s declarations")

    def is_declared_symbol(self, symbol: str) -> bool:
        declarations = self.declarations
        if found := re.fullmatch(r"_OBJC_(?:META)?CLASS_\$_(\w+)", symbol):
            return found[1] in declarations.classes
        return (symbol[1:] in declarations.functions
                or isinstance(declarations.constants.get(symbol[1:]), Type)
                or COMPILER_HELPERS.fullmatch(symbol) is not None)

    def is_declared(self, name) -> bool:
        declarations = self.declarations
        if name.kind == "method":
            owner, selector = name.spelling[2:-1].split(" ")
            return declarations.method(owner, selector, name.spelling[0] == "+") is not None
        known = {
            "class": declarations.classes,
            "protocol": declarations.protocols,
            "function": declarations.functions,
            "constant": declarations.constants,
            "macro": declarations.constants,
        }
        if name.kind == "enumerator":
            return name.spelling in declarations.constants or any(
                name.spelling in members for members in declarations.enumerators.values())
        return name.spelling in known[name.kind]


if __name__ == "__main__":
    unittest.main(verbosity=2)

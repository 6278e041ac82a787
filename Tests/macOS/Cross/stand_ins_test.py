"""What Tests/macOS/StandIns declares is declared by Apple's SDK, with the same types and values."""

from __future__ import annotations

import json
import os
import pathlib
import re
import tempfile
import unittest

from apple_api import PROJECT, SDK, STAND_INS, load_declarations, method_name, parse
from clang.cindex import CursorKind, Type as ClangType, TypeKind
from declarations import Type

# The build of the stand-ins, on Linux.
BUILD = pathlib.Path(os.environ.get("ZEPHLIN_STAND_INS_BUILD", PROJECT / "build/release"))

# What Platform/macOS imports.
FRAMEWORKS = ("AppKit/AppKit.h", "CoreFoundation/CoreFoundation.h", "CoreGraphics/CoreGraphics.h",
              "Foundation/Foundation.h", "IOKit/IOKitLib.h", "IOKit/hid/IOHIDKeys.h",
              "IOKit/hid/IOHIDManager.h", "QuartzCore/QuartzCore.h",
              "ServiceManagement/ServiceManagement.h", "dispatch/dispatch.h")

MACRO = re.compile(r"^\s*#\s*define\s+(\w+)[ \t]+(\S+)", re.MULTILINE)

METHODS = (CursorKind.OBJC_INSTANCE_METHOD_DECL, CursorKind.OBJC_CLASS_METHOD_DECL)
OWNERS = (CursorKind.OBJC_INTERFACE_DECL, CursorKind.OBJC_PROTOCOL_DECL,
          CursorKind.OBJC_CATEGORY_DECL)

IO_KIT = "a macro of IOKit's, as documented: the declarations have no macros, and no package its headers"

# Declarations that Apple's SDK does not have or has otherwise, and why that is well.
EXCEPTIONS = {
    "StandInSymbolImage": "a class of the tests' own: the image that a symbol's name gives",
    "dispatch_get_main_queue": "an inline function of Apple's header",
    "CF_RELEASES_ARGUMENT": "a macro for static analysers alone",
    "CF_RETURNS_RETAINED": "a macro for static analysers alone",
    "NS_UNAVAILABLE": "a macro for the compiler alone",
    "IO_OBJECT_NULL": IO_KIT,
    "kIOFirstMatchNotification": IO_KIT,
    "kIOHIDDeviceUsageKey": IO_KIT,
    "kIOHIDDeviceUsagePageKey": IO_KIT,
    "kIOHIDElementUsageKey": IO_KIT,
    "kIOHIDElementUsagePageKey": IO_KIT,
    "kIOMatchedNotification": IO_KIT,
    "kIOReturnNotPermitted": IO_KIT,
    "kIOReturnSuccess": IO_KIT,
}

# The same to the ABI: enums are integers, and an object of Core Foundation's is a pointer. The
# declarations have 64 bits for each enum.
FAMILIES = {"enum": {"int", "uint", "int64", "uint64"}, "pointer": {"object", "cstring"},
            "object": {"pointer"}}

SIMPLE = {
    TypeKind.VOID: "void", TypeKind.BOOL: "bool", TypeKind.CHAR_S: "char",
    TypeKind.SCHAR: "char", TypeKind.UCHAR: "uchar", TypeKind.INT: "int", TypeKind.UINT: "uint",
    TypeKind.LONG: "int64", TypeKind.LONGLONG: "int64", TypeKind.ULONG: "uint64",
    TypeKind.ULONGLONG: "uint64", TypeKind.DOUBLE: "double", TypeKind.FLOAT: "float",
    TypeKind.ENUM: "enum", TypeKind.OBJCOBJECTPOINTER: "object", TypeKind.OBJCID: "object",
    TypeKind.OBJCCLASS: "Class", TypeKind.OBJCSEL: "SEL", TypeKind.BLOCKPOINTER: "block",
    TypeKind.CONSTANTARRAY: "pointer", TypeKind.INCOMPLETEARRAY: "pointer",
}
APPLES = {
    "id": "object", "protocol": "object", "class": "object", "instancetype": "object",
    "NSString": "object", "NSMutableString": "object", "uint8": "bool", "long": "int64",
    "ulong": "uint64", "voidptr": "pointer", "array": "pointer",
}
STRUCTURES = {"_NSRect": "CGRect", "_NSSize": "CGSize", "_NSPoint": "CGPoint"}


def kind_of(clang_type: ClangType) -> str:
    spelling = clang_type.spelling.split()[0]
    if spelling in ("BOOL", "SEL"):
        return {"BOOL": "bool"}.get(spelling, spelling)
    canonical = clang_type.get_canonical()
    if re.match(r"NS(?!U?Integer)", spelling) and canonical.kind in (TypeKind.LONG, TypeKind.ULONG):
        return "enum"  # GNUstep declares some as plain integers
    if canonical.kind == TypeKind.POINTER:
        pointee = canonical.get_pointee().get_canonical()
        if pointee.kind == TypeKind.FUNCTIONPROTO:
            return "function"
        return "cstring" if pointee.kind in (TypeKind.CHAR_S, TypeKind.SCHAR) else "pointer"
    if canonical.kind == TypeKind.RECORD:
        name = canonical.get_declaration().spelling
        return "struct " + STRUCTURES.get(name, name)
    return SIMPLE[canonical.kind]


def apples_kind(declared: Type) -> str:
    if declared.kind == "struct":
        return f"struct {declared.name}"
    return APPLES.get(declared.kind, declared.kind)


def is_same(ours: str, apples: str) -> bool:
    return ours == apples or apples in FAMILIES.get(ours, ())


class StandInsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.declarations = load_declarations()
        cls.cursors = cls.parse_headers()

    @classmethod
    def parse_headers(cls) -> list:
        """The declarations that the stand-ins' frameworks have, compiled as the tests do it."""
        command = next(each for each in json.loads((BUILD / "compile_commands.json").read_text())
                       if "-fobjc-runtime=gcc" in each["command"])
        with tempfile.NamedTemporaryFile("w", suffix=".mm") as file:
            file.write("".join(f"#import <{header}>\n" for header in FRAMEWORKS))
            file.flush()
            text = command["command"].replace(command["file"], file.name)
            cls.unit = parse({"command": text, "file": file.name})
            return [cursor for cursor in cls.unit.cursor.get_children()
                    if cursor.location.file
                    and pathlib.Path(os.path.realpath(cursor.location.file.name))
                    .is_relative_to(STAND_INS)]

    def compare(self, what: str, ours: list[str], apples: list[str]) -> None:
        self.assertEqual(len(ours), len(apples), f"{what}: {ours}, Apple's {apples}")
        for mine, theirs in zip(ours, apples):
            self.assertTrue(is_same(mine, theirs), f"{what}: {ours}, Apple's {apples}")

    def apples_signature(self, offset: int) -> list[str]:
        signature = self.declarations.signature(offset)
        return [apples_kind(each) for each in (signature.result, *signature.arguments)]

    def test_each_method_has_apples_types(self) -> None:
        compared = 0
        for owner in self.each(*OWNERS):
            name = self.apples_name(owner)
            if name in EXCEPTIONS:
                continue
            with self.subTest(name=name):
                self.assertIsNotNone(self.declarations.interface(name), "Apple has no such class")
            for method in owner.get_children():
                if method.kind not in METHODS:
                    continue
                is_static = method.kind == CursorKind.OBJC_CLASS_METHOD_DECL
                title = method_name(name, method.spelling, is_static)
                with self.subTest(method=title):
                    apples = self.declarations.method(name, method.spelling, is_static)
                    self.assertIsNotNone(apples, "Apple has no such method")
                    self.compare(title, [kind_of(method.result_type),
                                         *(kind_of(argument.type)
                                           for argument in method.get_arguments())],
                                 self.apples_signature(apples.signature))
                    compared += 1
        self.assertGreater(compared, 70)
        print("methods compared:", compared)

    def test_each_function_has_apples_types(self) -> None:
        compared = 0
        for function in self.each(CursorKind.FUNCTION_DECL):
            if function.spelling in EXCEPTIONS:
                continue
            with self.subTest(function=function.spelling):
                apples = self.declarations.functions.get(function.spelling)
                self.assertIsNotNone(apples, "Apple has no such function")
                self.compare(function.spelling,
                             [kind_of(function.result_type),
                              *(kind_of(argument.type) for argument in function.get_arguments())],
                             self.apples_signature(apples))
                compared += 1
        self.assertGreater(compared, 30)
        print("functions compared:", compared)

    def test_each_constant_has_apples_type(self) -> None:
        compared = 0
        for constant in self.each(CursorKind.VAR_DECL):
            with self.subTest(constant=constant.spelling):
                compared += 1
                apples = self.declarations.constants.get(constant.spelling)
                if apples is None:  # an enumerator that GNUstep has by another name
                    self.assertEqual(self.value_of(constant), self.enumerator(constant.spelling))
                else:
                    self.compare(constant.spelling, [kind_of(constant.type)],
                                 [apples_kind(apples)])
        self.assertGreater(compared, 3)
        print("constants compared:", compared)

    def test_each_enumerator_has_apples_value(self) -> None:
        compared = 0
        for enum in self.each(CursorKind.ENUM_DECL):
            for member in enum.get_children():
                if member.kind == CursorKind.ENUM_CONSTANT_DECL:
                    with self.subTest(enumerator=member.spelling):
                        # As Apple has it in 64 bits, signed.
                        value = member.enum_value
                        self.assertIn(self.enumerator(member.spelling),
                                      (value, value - 2**32, value - 2**64))
                        compared += 1
        self.assertGreater(compared, 25)
        print("enumerators compared:", compared)

    def test_each_macro_has_apples_value(self) -> None:
        apples = {}
        for header in [*(SDK / "usr/include/dispatch").iterdir(),
                       SDK / "usr/include/mach/kern_return.h"]:
            apples |= dict(MACRO.findall(header.read_text()))
        compared = 0
        for macro in self.each(CursorKind.MACRO_DEFINITION):
            tokens = [token.spelling for token in macro.get_tokens()][1:]
            if macro.spelling in EXCEPTIONS or tokens[-1:] == [f"StandIn{macro.spelling[2:]}"]:
                continue
            with self.subTest(macro=macro.spelling):
                self.assertEqual("".join(tokens), apples.get(macro.spelling))
                compared += 1
        self.assertGreater(compared, 3)
        print("macros compared:", compared)

    def each(self, *kinds):
        return [cursor for cursor in flatten(self.cursors) if cursor.kind in kinds]

    def apples_name(self, owner) -> str:
        name = owner.spelling
        if owner.kind == CursorKind.OBJC_CATEGORY_DECL:
            name = next(child.spelling for child in owner.get_children()
                        if child.kind == CursorKind.OBJC_CLASS_REF)
        return name if name in EXCEPTIONS else re.sub(r"^StandIn(?=[A-Z])", "NS", name)

    def enumerator(self, name: str) -> int | None:
        value = self.declarations.constants.get(name)
        for members in self.declarations.enumerators.values():
            value = members.get(name, value)
        return value

    def value_of(self, constant) -> int:
        """The enumerator that a constant is initialised with."""
        initializer = next(child for child in constant.walk_preorder()
                           if child.kind == CursorKind.DECL_REF_EXPR)
        return initializer.referenced.enum_value


def flatten(cursors):
    """The declarations, those in extern "C" included."""
    for cursor in cursors:
        if cursor.kind in (CursorKind.LINKAGE_SPEC, CursorKind.UNEXPOSED_DECL):
            yield from flatten(cursor.get_children())
        else:
            yield cursor


if __name__ == "__main__":
    unittest.main(verbosity=2)

"""Reads the declarations of Apple's SDK from the npm package @nativescript/macos-node-api.

Its framework has a section __objc_metadata with every class, protocol, selector, function, enum and
constant of the SDK that it was made from, with the types that the ABI sees. It has no macros and no
availability; Core Foundation's types are plain objects there, and enums have 64 bits. The package's
TypeScript declarations say which framework a name belongs to, and where an integer is an enum.
"""

from __future__ import annotations

import pathlib
import re
import struct
from dataclasses import dataclass, field
from functools import cached_property

BINARY = ("build/RelWithDebInfo/NativeScript.apple.node/macos-arm64/NativeScript.framework/"
          "Versions/0.1.0/NativeScript")

# Set in a reference where another one follows; the rest is the offset.
MORE = 0x80000000
NOTHING = 0x7FFFFFFF

KINDS = ("char", "int", "short", "long", "int64", "uchar", "uint", "ushort", "ulong", "uint64",
         "float", "double", "uint8", "void", "cstring", "id", "protocol", "class", "instancetype",
         "NSString", "NSMutableString", "Class", "SEL", "array", "struct", "pointer", "voidptr",
         "function", "bool", "block", "uint128", "longdouble", "vector", "extvector", "complex",
         "f16")


@dataclass(frozen=True)
class Type:
    kind: str
    name: str = ""  # of a class or a structure; empty where it is not known
    protocols: tuple[str, ...] = ()
    target: Type | None = None  # of a pointer or an array
    signature: int = NOTHING  # of a block or a function pointer


@dataclass(frozen=True)
class Signature:
    result: Type
    arguments: tuple[Type, ...]
    is_variadic: bool


@dataclass(frozen=True)
class Method:
    """A method, or a property's getter or setter."""
    selector: str
    is_static: bool
    signature: int  # for Declarations.signature
    property_name: str = ""


@dataclass
class Interface:
    """A class or a protocol."""
    name: str
    superclass: str = ""
    protocols: list[str] = field(default_factory=list)
    methods: list[Method] = field(default_factory=list)


class Declarations:
    """Everything that the package declares, by name."""

    def __init__(self, package: pathlib.Path):
        self.types_folder = package / "types"
        self._data = _section((package / BINARY).read_bytes(), b"__objc_metadata")
        if self._data[:4] != b"NSMD" or struct.unpack_from("<H", self._data, 4)[0] != 1:
            raise SystemExit("the metadata have another format")
        (self._constants, self._enums, self._signatures, self._functions, self._protocols,
         self._classes, self._structs, self._unions) = struct.unpack_from("<8I", self._data, 6)
        self._strings = 6 + 32
        self._read_signatures: dict[int, Signature] = {}
        self.classes = self._read_classes()
        self.protocols = self._read_protocols()
        self.functions = self._read_functions()
        self.enums = self._read_enums()
        self.constants = self._read_constants()

    def interface(self, name: str) -> Interface | None:
        return self.classes.get(name) or self.protocols.get(name)

    def method(self, owner: str, selector: str, is_static: bool) -> Method | None:
        """The method of a class or a protocol, or of what it inherits from or conforms to."""
        seen, remaining = set(), [owner]
        while remaining:
            name = remaining.pop(0)
            interface = self.interface(name)
            if name in seen or interface is None:
                continue
            seen.add(name)
            for method in interface.methods:
                if method.selector == selector and method.is_static == is_static:
                    return method
            remaining += [interface.superclass, *interface.protocols]
            # NSObject the protocol has another name, since the class has this one.
            if "NSObject" in (name, interface.superclass, *interface.protocols):
                remaining.append("NSObjectProtocol")
        return None

    @cached_property
    def selectors(self) -> set[str]:
        interfaces = [*self.classes.values(), *self.protocols.values()]
        return {method.selector for interface in interfaces for method in interface.methods}

    @cached_property
    def enumerators(self) -> dict[str, dict[str, int]]:
        """The members of each enum by their whole names: NSAlertStyle to NSAlertStyleWarning."""
        return {name: {enumerator_name(name, member): value for member, value in members.items()}
                for name, members in self.enums.items()}

    def signature(self, offset: int) -> Signature:
        """The signature of a method, a function, a block or a function pointer."""
        offset &= NOTHING
        if offset not in self._read_signatures:
            position = self._signatures + offset
            flags = self._data[position]
            more, is_variadic = bool(flags & 0x80), bool(flags & 0x40)
            result, position = self._type(position)
            arguments = []
            more = more or is_variadic
            while more:
                more = bool(self._data[position] & 0x80)
                argument, position = self._type(position)
                arguments.append(argument)
            self._read_signatures[offset] = Signature(result, tuple(arguments), is_variadic)
        return self._read_signatures[offset]

    def _u32(self, position: int) -> int:
        return struct.unpack_from("<I", self._data, position)[0]

    def _string(self, offset: int) -> str:
        start = self._strings + (offset & NOTHING)
        return self._data[start:self._data.index(b"\0", start)].decode()

    def _name_at(self, section: int, reference: int) -> str:
        if reference & NOTHING == NOTHING:
            return ""
        return self._string(self._u32(section + (reference & NOTHING)))

    def _type(self, position: int) -> tuple[Type, int]:
        kind = KINDS[self._data[position] & 0x3F]
        position += 1
        if kind == "array":
            target, position = self._type(position + 2)
            return Type(kind, target=target), position
        if kind == "struct":
            reference = self._u32(position)
            section = self._unions if reference & MORE else self._structs
            return Type(kind, self._name_at(section, reference)), position + 4
        if kind in ("block", "function"):
            return Type(kind, signature=self._u32(position)), position + 4
        if kind in ("protocol", "class"):
            name, more = "", True
            if kind == "class":
                reference = self._u32(position)
                name, more = self._name_at(self._classes, reference), bool(reference & MORE)
                position += 4
            protocols = []
            while more:
                reference = self._u32(position)
                position += 4
                protocols.append(self._name_at(self._protocols, reference))
                more = bool(reference & MORE)
            return Type(kind, name, tuple(protocols)), position
        if kind == "pointer":
            target, position = self._type(position)
            return Type(kind, target=target), position
        return Type(kind), position

    def _methods(self, position: int) -> tuple[list[Method], int]:
        methods: list[Method] = []
        more = True
        while more:
            flags = self._data[position]
            position += 1
            if flags == 0:
                break
            more, is_static = bool(flags & 0x80), bool(flags & 8)
            if flags & 1:
                name, getter, signature = struct.unpack_from("<3I", self._data, position)
                position += 12
                methods.append(Method(self._string(getter), is_static, signature,
                                      self._string(name)))
                if not flags & 2:
                    setter, signature = struct.unpack_from("<2I", self._data, position)
                    position += 8
                    methods.append(Method(self._string(setter), is_static, signature,
                                          self._string(name)))
            else:
                selector, signature = struct.unpack_from("<2I", self._data, position)
                position += 8
                methods.append(Method(self._string(selector), is_static, signature))
        return methods, position

    def _read_classes(self) -> dict[str, Interface]:
        classes = {}
        position = self._classes
        while position < self._structs:
            reference = self._u32(position)
            position += 8
            interface = Interface(self._string(reference))
            while reference & MORE:
                reference = self._u32(position)
                position += 4
                interface.protocols.append(self._name_at(self._protocols, reference))
            reference = self._u32(position)
            position += 4
            interface.superclass = self._name_at(self._classes, reference)
            if reference & MORE:
                interface.methods, position = self._methods(position)
            classes[interface.name] = interface
        return classes

    def _read_protocols(self) -> dict[str, Interface]:
        protocols = {}
        position = self._protocols
        while position < self._classes:
            reference = self._u32(position)
            position += 4
            interface = Interface(self._string(reference))
            while reference & MORE:
                reference = self._u32(position)
                position += 4
                interface.protocols.append(self._name_at(self._protocols, reference))
            interface.methods, position = self._methods(position)
            protocols[interface.name] = interface
        return protocols

    def _read_functions(self) -> dict[str, int]:
        """The signature of each, for Declarations.signature."""
        return {self._string(self._u32(position)): self._u32(position + 4)
                for position in range(self._functions, self._protocols, 8)}

    def _read_enums(self) -> dict[str, dict[str, int]]:
        enums = {}
        position = self._enums
        while position < self._signatures:
            name = self._string(self._u32(position))
            position += 4
            members, more = {}, True
            while more:
                reference = self._u32(position)
                members[self._string(reference)] = struct.unpack_from(
                    "<q", self._data, position + 4)[0]
                position += 12
                more = bool(reference & MORE)
            enums[name] = members
        return enums

    def _read_constants(self) -> dict[str, Type | int | float | str]:
        """A constant's type where it is a symbol, otherwise its value."""
        constants: dict[str, Type | int | float | str] = {}
        position = self._constants
        while position < self._enums:
            name, evaluation = self._string(self._u32(position)), self._data[position + 4]
            position += 5
            if evaluation == 0:
                constants[name], position = self._type(position)
            elif evaluation in (1, 2):
                constants[name] = struct.unpack_from("<q" if evaluation == 1 else "<d",
                                                     self._data, position)[0]
                position += 8
            else:
                constants[name] = ""  # a text, which is not kept
                position += 4
        return constants


# Enums whose members' names do not begin with the enum's: prefix and suffix of the members.
AFFIXES = {
    "CGEventFlags": ("kCGEventFlagMask", ""),
    "CGEventTapLocation": ("kCG", "EventTap"),
    "CGEventTapOptions": ("kCGEventTapOption", ""),
    "CGEventTapPlacement": ("kCG", "EventTap"),
    "CGEventType": ("kCGEvent", ""),
    "NSBackingStoreType": ("NSBackingStore", ""),
    "NSEventModifierFlags": ("NSEventModifierFlag", ""),
    "NSKeyValueObservingOptions": ("NSKeyValueObservingOption", ""),
    "NSLayoutFormatOptions": ("NSLayoutFormat", ""),
    "dispatch_autorelease_frequency_t": ("DISPATCH_AUTORELEASE_FREQUENCY_", ""),
    "qos_class_t": ("QOS_CLASS_", ""),
}


def enumerator_name(enum: str, member: str) -> str:
    prefix, suffix = AFFIXES.get(enum, (enum, ""))
    return prefix + member + suffix


def package_folder() -> pathlib.Path:
    return pathlib.Path(__file__).parents[3] / "build/macos-sdk/packages/macos-node-api"


def _section(binary: bytes, wanted: bytes) -> bytes:
    """A section of a 64-bit Mach-O file, by name."""
    if struct.unpack_from("<I", binary)[0] != 0xFEEDFACF:
        raise SystemExit("not a 64-bit Mach-O file")
    commands, position = struct.unpack_from("<I", binary, 16)[0], 32
    for _ in range(commands):
        command, size = struct.unpack_from("<II", binary, position)
        if command == 0x19:  # LC_SEGMENT_64
            for index in range(struct.unpack_from("<I", binary, position + 64)[0]):
                header = position + 72 + 80 * index
                if binary[header:header + 16].rstrip(b"\0") == wanted:
                    length, offset = struct.unpack_from("<QI", binary, header + 40)
                    return binary[offset:offset + length]
        position += size
    raise SystemExit(f"no section {wanted.decode()}")

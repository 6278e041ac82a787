"""Writes headers of Objective-C frameworks from the declarations of Apple's SDK."""

from __future__ import annotations

import pathlib
import re
from collections import defaultdict

from declarations import AFFIXES, Declarations, Interface, Method, Type, enumerator_name

# Each may use the ones before it. Core Foundation, Core Graphics and IOKit are plain C, of which
# the declarations lose the types; their headers are written by hand (Tests/macOS/StandIns).
FRAMEWORKS = ("Foundation", "QuartzCore", "AppKit", "ServiceManagement")

# What the declarations lack: inline functions, macros and typedefs.
PREAMBLES = {
    "Foundation": """
#import <CoreFoundation/CoreFoundation.h>
#include <Availability.h>
#include <TargetConditionals.h>
#import <dispatch/dispatch.h>
#include <math.h>
#import <objc/NSObject.h>
#import <objc/message.h>
#import <objc/runtime.h>
#include <stdint.h>
#include <string.h>
#define FOUNDATION_EXPORT extern "C"
#ifndef NS_ENUM
#define NS_ENUM(type, name) enum name : type name; enum name : type
#define NS_OPTIONS(type, name) type name; enum : type
#endif
#define NS_UNAVAILABLE __attribute__((unavailable))
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
@class NSString;
typedef double NSTimeInterval;
typedef CGRect NSRect;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef struct _NSRange { NSUInteger location, length; } NSRange;
typedef struct NSEdgeInsets { CGFloat top, left, bottom, right; } NSEdgeInsets;
typedef struct NSDecimal NSDecimal;
typedef NSUInteger NSStringEncoding;
typedef NSString* NSErrorDomain;
typedef NSString* NSNotificationName;
typedef NSString* NSRunLoopMode;
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return NSRect{{x, y}, {width, height}};
}
static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) { return NSPoint{x, y}; }
static inline NSSize NSMakeSize(CGFloat width, CGFloat height) { return NSSize{width, height}; }
static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) {
  return NSRange{location, length};
}
static inline NSEdgeInsets NSEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom,
                                            CGFloat right) {
  return NSEdgeInsets{top, left, bottom, right};
}
static inline CGFloat NSMinX(NSRect rect) { return rect.origin.x; }
static inline CGFloat NSMinY(NSRect rect) { return rect.origin.y; }
static inline CGFloat NSWidth(NSRect rect) { return rect.size.width; }
static inline CGFloat NSHeight(NSRect rect) { return rect.size.height; }
static inline CGFloat NSMaxX(NSRect rect) { return rect.origin.x + rect.size.width; }
static inline CGFloat NSMaxY(NSRect rect) { return rect.origin.y + rect.size.height; }
static inline CGFloat NSMidX(NSRect rect) { return rect.origin.x + rect.size.width / 2; }
static inline CGFloat NSMidY(NSRect rect) { return rect.origin.y + rect.size.height / 2; }
FOUNDATION_EXPORT void NSLog(NSString* format, ...) __attribute__((format(__NSString__, 1, 2)));
""",
    "QuartzCore": """
#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>
""",
    "AppKit": """
#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>
#import <QuartzCore/QuartzCore.h>
typedef NSInteger NSControlStateValue;
typedef CGFloat NSFontWeight;
typedef NSInteger NSModalResponse;
typedef NSInteger NSWindowLevel;
extern "C" NSApplication* NSApp;
""",
    "ServiceManagement": """
#import <Foundation/Foundation.h>
""",
}

# Written by hand above.
WRITTEN = {"NSLog", "NSMakeRect", "NSMakePoint", "NSMakeSize", "NSMakeRange", "NSEdgeInsetsMake",
           "NSMinX", "NSMinY", "NSWidth", "NSHeight", "NSMaxX", "NSMaxY", "NSMidX", "NSMidY",
           "NSApp"}

# Of NSObject, what <objc/NSObject.h> declares.
ROOT_SELECTORS = set("""
    init alloc new copy mutableCopy dealloc finalize class superclass hash description
    debugDescription self retain release autorelease retainCount zone isProxy load initialize
    isEqual: performSelector: performSelector:withObject: performSelector:withObject:withObject:
    isKindOfClass: isMemberOfClass: conformsToProtocol: respondsToSelector:
    instancesRespondToSelector: methodForSelector: instanceMethodForSelector:
    doesNotRecognizeSelector: forwardingTargetForSelector: forwardInvocation:
    methodSignatureForSelector: instanceMethodSignatureForSelector: isSubclassOfClass:
    resolveClassMethod: resolveInstanceMethod: allocWithZone: copyWithZone: mutableCopyWithZone:
    allowsWeakReference retainWeakReference""".split())

SIMPLE_TYPES = {
    "char": "signed char", "int": "int", "short": "short", "long": "NSInteger",
    "int64": "NSInteger", "uchar": "unsigned char", "uint": "unsigned int",
    "ushort": "unsigned short", "ulong": "NSUInteger", "uint64": "NSUInteger", "float": "float",
    "double": "double", "uint8": "BOOL", "bool": "BOOL", "void": "void", "cstring": "const char*",
    "id": "id", "instancetype": "instancetype", "NSString": "NSString*",
    "NSMutableString": "NSMutableString*", "Class": "Class", "SEL": "SEL",
    "voidptr": "const void*",
}
INTEGERS = ("int64", "uint64", "long", "ulong", "int", "uint")
STRUCTURES = {"CGRect": "CGRect", "CGPoint": "CGPoint", "CGSize": "CGSize",
              "NSEdgeInsets": "NSEdgeInsets", "_NSRange": "NSRange", "NSRange": "NSRange"}

# Of the properties that hold an object of Core Foundation's, which the declarations call plain
# objects, those that are used.
C_OBJECTS = {
    ("CALayer", "backgroundColor"): "CGColorRef",
    ("CALayer", "borderColor"): "CGColorRef",
    ("NSColor", "CGColor"): "CGColorRef",
}

ENUM = re.compile(r"interop\.Enum<typeof (\w+)>")


class Inexpressible(Exception):
    """A type that Objective-C++ cannot spell, or that Zephlin does not use."""


class FrameworkHeaders:
    def __init__(self, declarations: Declarations):
        self._declarations = declarations
        # Where each name is declared.
        self._homes: dict[str, str] = {}
        # By class and by the method's name in TypeScript: the enums of the arguments and of the
        # result, where these are enums.
        self._enums_of: dict[str, dict[str, tuple[list[str], str]]] = defaultdict(dict)
        for framework in FRAMEWORKS:
            self._read_types(framework)

    def write(self, folder: pathlib.Path) -> None:
        """Writes Headers/<framework>.h of each framework."""
        for framework in FRAMEWORKS:
            headers = folder / f"{framework}.framework/Headers"
            headers.mkdir(parents=True, exist_ok=True)
            (headers / f"{framework}.h").write_text(self._header(framework))

    def _read_types(self, framework: str) -> None:
        owner = ""
        text = (self._declarations.types_folder / f"{framework}.d.ts").read_text()
        for line in text.splitlines():
            if found := re.match(r"declare (?:class|interface|function) (\w+)", line):
                owner = found[1]
                self._homes.setdefault(owner, framework)
            elif line == "}":
                owner = ""
            elif found := re.match(r"declare const (\w+):", line):
                self._homes.setdefault(found[1], framework)
            elif found := re.match(r"  (?:static )?(\w+)\??(?:<[^(]*>)?\((.*)\): (.*);$", line):
                arguments = [argument for argument in _split(found[2])
                             if not argument.strip().startswith("this:")]
                result = ENUM.match(found[3])
                self._enums_of[owner][found[1]] = ([_enum_in(argument) for argument in arguments],
                                                   result[1] if result else "")
            elif found := re.match(
                    r"  (?:static )?(?:readonly )?(?:get |set )?(\w+)\??: interop\.Enum<typeof (\w+)>",
                    line):
                self._enums_of[owner][found[1]] = ([], found[2])

    def _declared_in(self, framework: str, names) -> list[str]:
        return [name for name in names if self._homes.get(name) == framework]

    def _header(self, framework: str) -> str:
        declarations = self._declarations
        enums = self._declared_in(framework, declarations.enums)
        self._usable = FRAMEWORKS[:FRAMEWORKS.index(framework) + 1]
        # Named while the declarations are written, and declared before them.
        self._classes, self._protocols, self._structures = set(), set(), set()
        body = [self._constants(framework), self._functions(framework)]
        protocols = [name for name in self._declared_in(framework, declarations.protocols)
                     if name not in declarations.classes and name != "NSObjectProtocol"]
        for name in _parents_first(protocols, lambda name: declarations.protocols[name].protocols):
            body.append(self._protocol(declarations.protocols[name]))
        classes = [name for name in self._declared_in(framework, declarations.classes)
                   if name not in ("NSObject", "Protocol")]
        for name in _parents_first(classes, lambda name: [declarations.classes[name].superclass]):
            body.append(self._class(declarations.classes[name]))
        if framework == "Foundation":
            root = declarations.classes["NSObject"]
            methods = [method for method in root.methods if method.selector not in ROOT_SELECTORS]
            body.append("@interface NSObject (Foundation)\n"
                        + self._methods("NSObject", methods) + "\n@end")
        forward = [f"struct {name};" for name in sorted(self._structures)]
        forward += [f"@class {name};" for name in sorted(self._classes | {*classes} - {"NSObject"})]
        forward += [f"@protocol {name};" for name in sorted(self._protocols - {"NSObject"})]
        return "\n".join(["#pragma once", "#pragma clang system_header", *forward,
                          PREAMBLES[framework], *map(self._enum, enums), *body, ""])

    def _enum(self, name: str) -> str:
        members = self._declarations.enums[name]
        is_unsigned = name not in AFFIXES and bool(re.search(r"(Mask|Options|Flags)$", name)) or \
            name == "NSEventModifierFlags"
        underlying = "NSUInteger" if is_unsigned else "NSInteger"
        values = ", ".join(f"{enumerator_name(name, member)} = ({underlying}){_literal(value)}"
                           for member, value in members.items() if re.fullmatch(r"\w+", member))
        if is_unsigned:
            return f"typedef {underlying} {name};\nenum : {underlying} {{ {values} }};"
        return f"typedef enum {name} : {underlying} {{ {values} }} {name};"

    def _constants(self, framework: str) -> str:
        lines = []
        for name in self._declared_in(framework, self._declarations.constants):
            value = self._declarations.constants[name]
            if name in WRITTEN:
                continue
            if isinstance(value, Type):
                try:
                    lines.append(f'extern "C" {self._spelling(value)} const {name};')
                except Inexpressible:
                    pass
            elif isinstance(value, int):
                lines.append(f"static const NSInteger {name} = {_literal(value)};")
            elif isinstance(value, float):
                lines.append(f"static constexpr CGFloat {name} = {value!r};")
        return "\n".join(lines)

    def _functions(self, framework: str) -> str:
        lines = []
        for name in self._declared_in(framework, self._declarations.functions):
            signature = self._declarations.signature(self._declarations.functions[name])
            try:
                if signature.result.kind in ("block", "function"):
                    raise Inexpressible
                arguments = [self._spelling(argument) for argument in signature.arguments]
                arguments += ["..."] if signature.is_variadic else []
                if name not in WRITTEN:
                    lines.append(f'extern "C" {self._spelling(signature.result)} {name}('
                                 f'{", ".join(arguments) or "void"});')
            except Inexpressible:
                pass
        return "\n".join(lines)

    def _protocol(self, protocol: Interface) -> str:
        inherited = [self._protocol_name(name) for name in protocol.protocols
                     if name == "NSObjectProtocol" or self._homes.get(name) in self._usable]
        return (f"@protocol {protocol.name}" + (f" <{', '.join(inherited)}>" if inherited else "")
                + "\n@optional\n" + self._methods(protocol.name, protocol.methods) + "\n@end")

    def _class(self, interface: Interface) -> str:
        superclass = interface.superclass
        if superclass in ("", "NativeObject") or interface.name == "NSProxy":
            superclass = "NSObject"
        protocols = [self._protocol_name(name) for name in interface.protocols
                     if self._homes.get(name) in self._usable and name != "NSObjectProtocol"]
        return (f"@interface {interface.name} : {superclass}"
                + (f" <{', '.join(protocols)}>" if protocols else "") + "\n"
                + self._methods(interface.name, interface.methods) + "\n@end")

    def _methods(self, owner: str, methods: list[Method]) -> str:
        lines: dict[tuple[bool, str], str] = {}
        for method in methods:
            key = (method.is_static, method.selector)
            try:
                lines.setdefault(key, self._method(owner, method))
            except Inexpressible:
                pass
        return "\n".join(lines.values())

    def _method(self, owner: str, method: Method) -> str:
        signature = self._declarations.signature(method.signature)
        name = method.property_name or _typescript_name(method.selector)
        argument_enums, result_enum = self._enums_of[owner].get(name, ([], ""))
        if method.property_name:
            argument_enums = [result_enum]
        parts = method.selector.split(":")[:-1]
        if len(parts) != len(signature.arguments):
            raise Inexpressible
        sign = "+" if method.is_static else "-"
        if c_object := C_OBJECTS.get((owner, method.property_name)):
            if parts:
                return f"{sign} (void){method.selector}({c_object})a0;"
            return f"{sign} ({c_object}){method.selector};"
        result = self._spelling(signature.result, result_enum)
        if not parts:
            return f"{sign} ({result}){method.selector};"
        enums = argument_enums + [""] * len(parts)
        arguments = [f"{part}:({self._spelling(argument, enum)})a{index}" for index, (
            part, argument, enum) in enumerate(zip(parts, signature.arguments, enums))]
        return (f"{sign} ({result}){' '.join(arguments)}"
                f"{', ...' if signature.is_variadic else ''};")

    def _spelling(self, type_: Type, enum: str = "", nested: bool = False) -> str:
        """The type in Objective-C++; an integer as the enum that it is."""
        kind = type_.kind
        if enum and kind in INTEGERS and enum in self._declarations.enums \
                and self._homes.get(enum) in self._usable:
            return enum
        if kind == "instancetype" and nested:
            return "id"
        if kind in SIMPLE_TYPES:
            return SIMPLE_TYPES[kind]
        if kind == "class":
            if type_.name not in self._declarations.classes or type_.name == "Protocol":
                return "id"
            self._classes.add(type_.name)
            protocols = ", ".join(map(self._protocol_name, filter(None, type_.protocols)))
            return type_.name + (f"<{protocols}>" if protocols else "") + "*"
        if kind == "protocol":
            protocols = ", ".join(map(self._protocol_name, filter(None, type_.protocols)))
            return f"id<{protocols}>" if protocols else "id"
        if kind == "struct":
            if type_.name in STRUCTURES:
                return STRUCTURES[type_.name]
            if not re.fullmatch(r"\w+", type_.name):
                raise Inexpressible
            self._structures.add(type_.name)
            return f"struct {type_.name}"
        if kind in ("pointer", "array"):
            if type_.target.kind in ("block", "function"):
                return "void*"
            return self._spelling(type_.target, nested=True) + "*"
        if kind in ("block", "function"):
            signature = self._declarations.signature(type_.signature)
            if signature.result.kind in ("block", "function"):
                raise Inexpressible
            arguments = [self._spelling(argument, nested=True) for argument in signature.arguments]
            arguments += ["..."] if signature.is_variadic else []
            return (f"{self._spelling(signature.result, nested=True)} "
                    f"({'^' if kind == 'block' else '*'})({', '.join(arguments) or 'void'})")
        raise Inexpressible

    def _protocol_name(self, name: str) -> str:
        name = "NSObject" if name == "NSObjectProtocol" else name
        self._protocols.add(name)
        return name


def _literal(value: int) -> str:
    return str(value) if value != -2**63 else "(-9223372036854775807 - 1)"


def _typescript_name(selector: str) -> str:
    first, *others = selector.split(":")
    return first + "".join(other[:1].upper() + other[1:] for other in others)


def _enum_in(argument: str) -> str:
    """The enum that is an argument's type, of "name: type"."""
    if ":" not in argument or "=>" in argument:
        return ""
    found = ENUM.search(argument.split(":", 1)[1])
    return found[1] if found else ""


def _split(arguments: str) -> list[str]:
    """Splits at the commas that are not in brackets."""
    parts, depth = [""], 0
    for character in arguments:
        depth += character in "(<[{"
        depth -= character in ")>]}"
        if character == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += character
    return parts if parts != [""] else []


def _parents_first(names: list[str], parents_of) -> list[str]:
    ordered: dict[str, None] = {}
    known = set(names)

    def visit(name: str) -> None:
        if name not in ordered and name in known:
            for parent in parents_of(name):
                visit(parent)
            ordered[name] = None

    for name in names:
        visit(name)
    return list(ordered)

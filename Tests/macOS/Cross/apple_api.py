"""What Platform/macOS uses of Apple's frameworks, as the compiler understands its sources."""

from __future__ import annotations

import json
import os
import pathlib
import shlex
import sys
from collections import defaultdict
from concurrent.futures import ProcessPoolExecutor
from dataclasses import dataclass
from functools import lru_cache

import clang.cindex as libclang
from clang.cindex import CursorKind

LLVM = pathlib.Path("/usr/lib/llvm-16")
PROJECT = pathlib.Path(__file__).resolve().parents[3]
SDK = PROJECT / "build/macos-sdk"
ROOM = PROJECT / "Platform/macOS"
STAND_INS = PROJECT / "Tests/macOS/StandIns"
BUILD = pathlib.Path(os.environ.get("ZEPHLIN_BUILD", PROJECT / "build/macos-cross"))

sys.path.insert(0, str(PROJECT / "Packaging/macOS/Toolchain"))
from declarations import Declarations, package_folder  # noqa: E402

libclang.Config.set_library_file(str(LLVM / "lib/libclang-16.so.1"))


@dataclass(frozen=True, order=True)
class Name:
    """Something that a framework declares: a class, a method, a function, a constant…"""
    kind: str  # class, protocol, method, function, constant, enumerator or macro
    spelling: str  # of a method: -[Class selector] or +[Class selector]
    value: int | None = None  # of an enumerator


KINDS = {
    CursorKind.OBJC_INTERFACE_DECL: "class",
    CursorKind.OBJC_PROTOCOL_DECL: "protocol",
    CursorKind.OBJC_CLASS_METHOD_DECL: "method",
    CursorKind.OBJC_INSTANCE_METHOD_DECL: "method",
    CursorKind.FUNCTION_DECL: "function",
    CursorKind.VAR_DECL: "constant",
    CursorKind.ENUM_CONSTANT_DECL: "enumerator",
    CursorKind.MACRO_DEFINITION: "macro",
}


def load_declarations() -> Declarations:
    return Declarations(package_folder())


def method_name(owner: str, selector: str, is_static: bool) -> str:
    return f"{'+' if is_static else '-'}[{owner} {selector}]"


@dataclass(frozen=True)
class Implementation:
    """A method that a class implements without declaring it, and so on Apple's word."""
    owner: str
    parents: tuple[str, ...]  # the class's superclass and protocols
    selector: str
    is_static: bool


@dataclass
class Usage:
    names: dict[Name, set[str]]  # with the files that use each
    implementations: set[Implementation]


@lru_cache(maxsize=None)
def examine_room() -> Usage:
    """What the sources of Platform/macOS use."""
    commands = [command for command in json.loads((BUILD / "compile_commands.json").read_text())
                if pathlib.Path(command["file"]).parent == ROOM]
    usage = Usage(defaultdict(set), set())
    with ProcessPoolExecutor() as pool:
        for file, names, implementations in pool.map(_examine, commands):
            for name in names:
                usage.names[name].add(file)
            usage.implementations |= implementations
    return usage


def parse(command: dict) -> libclang.TranslationUnit:
    """Parses a file as its compile command says; of several architectures, for the first."""
    arguments, words = [], iter(shlex.split(command["command"])[1:])
    for word in words:
        if word in ("-o", "-MT", "-MF"):
            next(words)
        elif word == "-arch":
            architecture = next(words)
            if word not in arguments:
                arguments += [word, architecture]
        elif word not in ("-c", "-MD", command["file"]) and not word.endswith("clang++"):
            arguments.append(word)
    unit = libclang.Index.create().parse(
        command["file"],
        [*arguments, "-resource-dir", str(LLVM / "lib/clang/16")],
        options=libclang.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [each for each in unit.diagnostics if each.severity >= libclang.Diagnostic.Error]
    if errors:
        raise SystemExit(f"{command['file']}: {errors[0]}")
    return unit


def _examine(command: dict) -> tuple[str, set[Name], set[Implementation]]:
    names: set[Name] = set()
    implementations: set[Implementation] = set()
    own = {}  # classes and protocols

    def visit(cursor) -> None:
        referenced = cursor.referenced
        if referenced is not None and referenced.kind in KINDS and _is_apples(referenced):
            names.add(_name(referenced))
        for child in cursor.get_children():
            visit(child)

    for cursor in parse(command).cursor.get_children():
        # Of these there are tens of thousands.
        if cursor.kind == CursorKind.MACRO_DEFINITION or _folder(cursor) != ROOM:
            continue
        visit(cursor)
        if cursor.kind in (CursorKind.OBJC_INTERFACE_DECL, CursorKind.OBJC_PROTOCOL_DECL):
            own[cursor.spelling] = cursor
        elif cursor.kind == CursorKind.OBJC_IMPLEMENTATION_DECL:
            implementations |= _implementations(own, cursor)
    return pathlib.Path(command["file"]).name, names, implementations


def _implementations(own: dict, implementation) -> set[Implementation]:
    interface = own[implementation.spelling]
    parents = [child.spelling for child in interface.get_children() if child.kind in (
        CursorKind.OBJC_SUPER_CLASS_REF, CursorKind.OBJC_PROTOCOL_REF)]
    methods = (CursorKind.OBJC_INSTANCE_METHOD_DECL, CursorKind.OBJC_CLASS_METHOD_DECL)
    declared = {child.spelling for name in (interface.spelling, *parents) if name in own
                for child in own[name].get_children() if child.kind in methods}
    return {Implementation(interface.spelling, tuple(parents), method.spelling,
                           method.kind == CursorKind.OBJC_CLASS_METHOD_DECL)
            for method in implementation.get_children()
            if method.kind in methods and method.spelling not in declared}


def _folder(cursor) -> pathlib.Path | None:
    file = cursor.location.file
    return _real_folder(file.name) if file else None


@lru_cache(maxsize=None)
def _real_folder(name: str) -> pathlib.Path:
    return pathlib.Path(os.path.realpath(name)).parent


def _is_apples(cursor) -> bool:
    """Whether a header of a framework declares it. Apple's C headers say themselves since when
    each function exists, and the compiler looks at that."""
    folder = _folder(cursor)
    return folder is not None and (folder.is_relative_to(STAND_INS)
                                   or folder.is_relative_to(SDK / "System"))


def _name(cursor) -> Name:
    kind = KINDS[cursor.kind]
    if kind == "method":
        return Name(kind, method_name(cursor.semantic_parent.spelling, cursor.spelling,
                                      cursor.kind == CursorKind.OBJC_CLASS_METHOD_DECL))
    if kind == "enumerator":
        return Name(kind, cursor.spelling, cursor.enum_value)
    return Name(kind, cursor.spelling)

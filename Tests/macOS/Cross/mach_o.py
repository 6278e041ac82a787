"""Reads Mach-O programs: what llvm-objdump says of them, and their code signatures."""

from __future__ import annotations

import hashlib
import pathlib
import re
import struct
import subprocess
from dataclasses import dataclass

LLVM = pathlib.Path("/usr/lib/llvm-16/bin")


@dataclass(frozen=True, order=True)
class Import:
    library: str
    symbol: str


@dataclass
class Signature:
    """What the code directory of a signature says, and whether its hashes are those of the file."""
    identifier: str
    is_ad_hoc: bool
    pages: int
    wrong_pages: list[int]


def architectures(program: pathlib.Path) -> list[str]:
    return sorted(_run("llvm-lipo", "-archs", program).split())


def objdump(program: pathlib.Path, architecture: str, *options: str) -> str:
    return _run("llvm-objdump", "--macho", f"--arch={architecture}", *options, program)


def load_commands(program: pathlib.Path, architecture: str) -> list[dict[str, str]]:
    """Each command's fields, as text."""
    commands: list[dict[str, str]] = []
    for line in objdump(program, architecture, "--private-headers").splitlines():
        words = line.split()
        if line.startswith("Load command"):
            commands.append({})
        elif commands and len(words) >= 2:
            commands[-1].setdefault(words[0], words[1])
    return commands


def imports(program: pathlib.Path, architecture: str) -> set[Import]:
    """The symbols that the loader binds, and the library that each comes from."""
    found = set()
    for option, library_column in (("--bind", 5), ("--lazy-bind", 3), ("--weak-bind", None)):
        for line in objdump(program, architecture, option).splitlines():
            words = line.split()
            if len(words) > 3 and words[0].startswith("__") and library_column is not None:
                found.add(Import(words[library_column], words[library_column + 1]))
    return found


def undefined_symbols(program: pathlib.Path, architecture: str) -> set[str]:
    listing = _run("llvm-nm", f"--arch={architecture}", "--undefined-only",
                   "--format=just-symbols", program)
    return set(listing.split())


def selectors_sent(program: pathlib.Path, architecture: str) -> set[str]:
    listing = objdump(program, architecture, "--section=__DATA,__objc_selrefs")
    return set(re.findall(r"__objc_methname:(\S+)", listing))


def selectors_implemented(program: pathlib.Path, architecture: str) -> set[str]:
    listing = objdump(program, architecture, "--objc-meta-data")
    return set(re.findall(r"^\s+name 0x\w+(?: \(0x\w+\))? (\S+)$", listing, re.MULTILINE))


def signature(program: pathlib.Path, architecture: str) -> Signature:
    """The code signature's code directory (osfmk/kern/cs_blobs.h in Apple's XNU)."""
    data = _run_bytes("llvm-lipo", "-thin", architecture, program, "-output", "/dev/stdout")
    command = next(each for each in load_commands(program, architecture)
                   if each["cmd"] == "LC_CODE_SIGNATURE")
    offset = int(command["dataoff"])
    magic, _, count = struct.unpack_from(">III", data, offset)
    if magic != 0xFADE0CC0:
        raise ValueError("no embedded signature")
    blobs = dict(struct.unpack_from(">II", data, offset + 12 + 8 * index)
                 for index in range(count))
    start = offset + blobs[0]  # the code directory
    (magic, _, _, flags, hashes, identifier, _, slots, limit, hash_size, hash_type, _,
     page_bits) = struct.unpack_from(">IIIIIIIIIBBBB", data, start)
    if magic != 0xFADE0C02 or hash_type != 2:
        raise ValueError("no code directory of SHA-256")
    if limit != offset:
        raise ValueError(f"{limit} of {offset} bytes are signed")
    page = 1 << page_bits
    wrong = [slot for slot in range(slots)
             if hashlib.sha256(data[slot * page:min((slot + 1) * page, limit)]).digest()
             != data[start + hashes + slot * hash_size:][:hash_size]]
    name = data[start + identifier:]
    return Signature(name[:name.index(b"\0")].decode(), bool(flags & 2), slots, wrong)


def _run(tool: str, *arguments) -> str:
    return _run_bytes(tool, *arguments).decode()


def _run_bytes(tool: str, *arguments) -> bytes:
    return subprocess.run([LLVM / tool, *arguments], check=True, capture_output=True).stdout

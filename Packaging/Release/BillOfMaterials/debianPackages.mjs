import { spawnSync } from "node:child_process";
import fs from "node:fs";

import { lines, output } from "./commands.mjs";

/** The release of Debian that this runs on, such as debian-12. */
export const DISTRIBUTION = (() => {
    const release = fs.readFileSync("/etc/os-release", "utf8");
    const value = (key) => release.match(new RegExp(`^${key}="?([^"\n]*)`, "m"))[1];
    return `${value("ID")}-${value("VERSION_ID")}`;
})();

/** The installed packages that the files belong to, by name: [{ name, version, … }], where
 * licence may be missing. */
export function packagesOf(files) {
    if (files.length === 0) {
        return [];
    }
    // Some packages own /lib/FILE, others /usr/lib/FILE, and both are the same file. dpkg fails if it
    // does not know one of them.
    const either = files.flatMap((file) => [file, file.replace(/^\/usr/, ""), `/usr${file}`]);
    const { stdout } = spawnSync("dpkg-query", ["--search", ...new Set(either)],
                                 { encoding: "utf8", maxBuffer: 2 ** 30 });
    const owners = new Map(lines(stdout).filter((line) => !line.startsWith("diversion"))
        .map((line) => line.split(": ")).map(([owner, file]) => [file, owner]));
    const names = new Set();
    for (const file of files) {
        const owner = owners.get(file) ?? owners.get(`/usr${file}`)
            ?? owners.get(file.replace(/^\/usr/, ""));
        if (owner === undefined) {
            throw new Error(`${file} belongs to no installed package`);
        }
        names.add(owner);
    }
    return [...names].sort().map(describe);
}

function describe(name) {
    const fields = ["Package", "Version", "Architecture", "source:Package", "source:Version",
                    "Homepage"];
    const [packageName, version, architecture, source, sourceVersion, homepage] =
        output("dpkg-query", ["--show",
                              "--showformat", fields.map((field) => `\${${field}}`).join("\t"), name])
            .split("\t");
    const copyright = fs.readFileSync(`/usr/share/doc/${packageName}/copyright`, "utf8");
    return { name: packageName, version, architecture, source, sourceVersion, homepage, copyright,
             licence: licenceIn(copyright) };
}

/**
 * The licence in one of Debian's copyright files, as an SPDX expression where its name has one, or
 * nothing where no rule finds it.
 */
export function licenceIn(copyright) {
    const everything = copyright.split(/\n\n+/).find((part) => /^Files:\s*\*\s*$/m.test(part));
    if (everything !== undefined) {
        return toSpdx(everything.match(/^License:\s*(.*)/m)[1]);
    }
    // Files in an older, free format.
    const text = copyright.replace(/\s+/g, " ");
    return FREE_FORMAT.find(([phrase]) => phrase.test(text))?.[1];
}

const FREE_FORMAT = [
    [/GCC Runtime Library Exception/i, "GPL-3.0-or-later WITH GCC-exception-3.1"],
    [/system calls by normal system calls|Linux-syscall-note/i,
     "GPL-2.0-only WITH Linux-syscall-note"],
    [/GNU Lesser General Public License as published by the Free Software Foundation; either version 2\.1/,
     "LGPL-2.1-or-later"],
    [/GNU General Public License as published by the Free Software Foundation; either version 2/,
     "GPL-2.0-or-later"],
    [/GNU General Public License as published by the Free Software Foundation; either version 3/,
     "GPL-3.0-or-later"],
];

/** Debian's names of licences differ from SPDX's in MIT's, LLVM's and the GNU licences. */
function toSpdx(name) {
    return name
        .replace("APACHE-2-LLVM-EXCEPTIONS", "Apache-2.0 WITH LLVM-exception")
        .replace(/\bExpat\b/g, "MIT")
        .replace(/\b(A?L?GPL)-(\d)(?:\.0)?(?=\+|\s|,|$)/g, "$1-$2.0")
        .replace(/\b(A?L?GPL-[\d.]+)\+/g, "$1-or-later")
        .replace(/\b(A?L?GPL-[\d.]+)(?=\s|,|$)/g, "$1-only")
        .replace(/ (or|and|with) /g, (word) => word.toUpperCase());
}

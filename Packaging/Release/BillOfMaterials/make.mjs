#!/usr/bin/env node
// Writes the bill of materials of the release files in a folder, in CycloneDX's format:
// make.mjs FOLDER VERSION RESULT
//
// It lists each file, the programs in it, what was compiled and linked into these, and which libraries
// they load. All of this is read from the files and from the build folders release and macos-cross.
// The same files and builds give the same bytes; SOURCE_DATE_EPOCH is the time of the release.
import { createHash } from "node:crypto";
import fs from "node:fs";
import { createRequire } from "node:module";
import os from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";

import { lines, output } from "./commands.mjs";
import { DISTRIBUTION, licenceIn, packagesOf } from "./debianPackages.mjs";
import { Build } from "./ingredients.mjs";

const ROOT = fileURLToPath(new URL("../../..", import.meta.url)).replace(/\/$/, "");
const SDK = path.join(ROOT, "build/macos-sdk");
const fromTools = createRequire(path.join(ROOT, "build/release-tools/"));
const CDX = fromTools("@cyclonedx/cyclonedx-library");
const { PackageURL } = fromTools("packageurl-js");

const { Component, Property } = CDX.Models;
const { ComponentScope, ComponentType } = CDX.Enums;
const licences = new CDX.Factories.LicenseFactory();
const references = new CDX.Factories.FromNodePackageJson.ExternalReferenceFactory();
const npmPackages = new CDX.Builders.FromNodePackageJson.ComponentBuilder(references, licences);

// The tools that made the files, besides the compilers.
const TOOLS = ["cmake", "ninja", "ld", "dpkg-deb", "rpmbuild", "gzip", "/usr/lib/llvm-16/bin/lld"];

const OUR_LICENCE =
    licenceIn(fs.readFileSync(path.join(ROOT, "Packaging/Debian/copyright"), "utf8"));

const bom = new CDX.Models.Bom();

function addHash(component, file) {
    component.hashes.set(CDX.Enums.HashAlgorithm["SHA-256"],
                         createHash("sha256").update(fs.readFileSync(file)).digest("hex"));
}

function licenceText(name, text) {
    return new CDX.Models.NamedLicense(name, { text: new CDX.Models.Attachment(text) });
}

function debianComponent(description, bomRef, options) {
    const { name, version, architecture, source, sourceVersion, homepage, copyright, licence } =
        description;
    const purl = new PackageURL("deb", "debian", name, version,
                                { arch: architecture, distro: DISTRIBUTION }, undefined);
    const component =
        new Component(ComponentType.Library, name, { version, purl, bomRef, ...options });
    component.licenses.add(
        licence !== undefined
            ? licences.makeFromString(licence)
            : licenceText(`Debian's copyright file of ${name}`, copyright));
    component.properties.add(new Property("debian:source", `${source} ${sourceVersion}`));
    if (homepage !== "") {
        component.externalReferences.add(new CDX.Models.ExternalReference(
            homepage, CDX.Enums.ExternalReferenceType.Website));
    }
    return component;
}

/** Adds a component to the bill unless it is there, and returns it. */
function shared(key, make) {
    const known = [...bom.components].find((each) => each.bomRef.value === key);
    const component = known ?? make(key);
    bom.components.add(component);
    return component;
}

/** What is in a program: components for its own list. */
function contents(program, { linked, included }) {
    const isOurs = (file) => file.startsWith(`${ROOT}/`);
    const sorted = new Map();
    for (const [linkage, files] of [["linked statically", linked], ["included headers", included]]) {
        for (const each of packagesOf(files.filter((file) => !isOurs(file)))) {
            const entry = sorted.get(each.name) ?? { each, linkages: [] };
            entry.linkages.push(linkage);
            sorted.set(each.name, entry);
        }
    }
    const components = [...sorted].map(([name, { each, linkages }]) => {
        const component = debianComponent(each, `${program}#${name}`);
        component.properties.add(new Property("zephlin:linkage", linkages.join(", ")));
        return component;
    });
    if (included.some((file) => file.startsWith(`${SDK}/`))) {
        components.push(...sdkPackages(program));
    }
    return components;
}

/** The npm packages that replace Apple's SDK. */
function sdkPackages(program) {
    return fs.readdirSync(path.join(SDK, "packages"), { withFileTypes: true })
        .filter((entry) => entry.isDirectory())
        .map(({ name }) => {
            const read = (file) => fs.readFileSync(path.join(SDK, "packages", name, file), "utf8");
            const description = JSON.parse(read("package.json"));
            const component = npmPackages.makeComponent(description, ComponentType.Library);
            component.bomRef.value = `${program}#${description.name}`;
            component.purl = new PackageURL(
                "npm", component.group, component.name, component.version, undefined, undefined);
            if (component.licenses.size === 0) {
                component.licenses.add(licenceText(`LICENSE of ${description.name}`, read("LICENSE")));
            }
            component.properties.add(new Property("zephlin:linkage", "included headers"));
            return component;
        });
}

/** The libraries that a program for Linux loads. */
function loadedOnLinux(file) {
    const names = [...output("readelf", ["--dynamic", "--wide", file])
        .matchAll(/\(NEEDED\).*\[(.*)\]/g)].map((match) => match[1]);
    const paths = names.map((name) => {
        const found = output("c++", [`-print-file-name=${name}`]).trim();
        return fs.realpathSync(found);
    });
    return packagesOf(paths).map((each) => shared(each.name, (key) => debianComponent(each, key)));
}

/** The libraries and frameworks that a program for macOS loads, all of which are part of macOS. */
function loadedOnMac(file) {
    const listing = output("/usr/lib/llvm-16/bin/llvm-objdump", ["--macho", "--dylibs-used", file]);
    const paths = [...listing.matchAll(/^\t(\S+) \(compatibility/gm)].map((match) => match[1]);
    return [...new Set(paths)].sort().map((library) => shared(library, (key) =>
        new Component(library.includes(".framework/") ? ComponentType.Framework
                                                      : ComponentType.Library,
                      path.basename(library), { bomRef: key, description: "part of macOS" })));
}

const KINDS = [
    {
        magic: "7f454c46",
        build: new Build(path.join(ROOT, "build/release")),
        target: (name) => `bin/${name}`,
        loaded: loadedOnLinux,
    },
    {
        magic: "cafebabe",
        build: new Build(path.join(ROOT, "build/macos-cross")),
        target: (name) => `bin/${name}.app/Contents/MacOS/${name}`,
        loaded: loadedOnMac,
    },
];

/** The programs in a release file, with what is in them. */
function programs(archive) {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), "bill-"));
    try {
        if (archive.endsWith(".deb")) {
            output("dpkg-deb", ["--extract", archive, folder]);
        } else if (/\.(rpm|zip)$/.test(archive)) {
            output("bsdtar", ["--extract", "--file", archive, "--directory", folder]);
        }
        return lines(output("find", [folder, "-type", "f"])).sort().flatMap((file) => {
            const magic = fs.readFileSync(file).subarray(0, 4).toString("hex");
            const kind = KINDS.find((each) => each.magic === magic);
            return kind === undefined
                ? [] : [programComponent(path.basename(archive), path.relative(folder, file), file, kind)];
        });
    } finally {
        fs.rmSync(folder, { recursive: true });
    }
}

function programComponent(archive, name, file, { build, target, loaded }) {
    const bomRef = `${archive}#${name}`;
    const ingredients = build.ingredients(target(path.basename(name)));
    const component = new Component(ComponentType.Application, name, {
        bomRef,
        components: new CDX.Models.ComponentRepository(contents(bomRef, ingredients)),
    });
    addHash(component, file);
    component.licenses.add(licences.makeFromString(OUR_LICENCE));
    for (const library of loaded(file)) {
        component.dependencies.add(library.bomRef);
    }
    return component;
}

function compilers() {
    const commands = ["release", "macos-cross"].flatMap((preset) => JSON.parse(fs.readFileSync(
        path.join(ROOT, "build", preset, "compile_commands.json"), "utf8")));
    return [...new Set(commands.map(({ command }) => command.split(" ")[0]))];
}

/** The packages of the tools that made the files: another version may give other bytes. */
function addTools() {
    const files = [...compilers(), ...TOOLS].map((tool) =>
        fs.realpathSync(path.isAbsolute(tool) ? tool : output("which", [tool]).trim()));
    for (const each of packagesOf(files)) {
        shared(each.name, (key) => debianComponent(each, key, {
            scope: ComponentScope.Excluded,
            description: "made the release's files, and is in none of them",
        }));
    }
}

function main([folder, version, result]) {
    const product = new Component(ComponentType.Application, "Zephlin", {
        version,
        bomRef: "zephlin",
        purl: new PackageURL("generic", undefined, "zephlin", version, undefined, undefined),
    });
    product.licenses.add(licences.makeFromString(OUR_LICENCE));
    bom.metadata.component = product;
    bom.metadata.timestamp = new Date(Number(process.env.SOURCE_DATE_EPOCH) * 1000);
    bom.metadata.tools.components.add(npmPackages.makeComponent(
        fromTools("@cyclonedx/cyclonedx-library/package.json"), ComponentType.Library));

    for (const name of fs.readdirSync(folder).sort()) {
        const file = path.join(folder, name);
        const component = new Component(ComponentType.File, name, {
            version,
            bomRef: name,
            components: new CDX.Models.ComponentRepository(programs(file)),
        });
        addHash(component, file);
        bom.components.add(component);
        product.dependencies.add(component.bomRef);
    }
    addTools();

    const serializer = new CDX.Serialize.JsonSerializer(
        new CDX.Serialize.JSON.Normalize.Factory(CDX.Spec.Spec1dot6));
    const serialize = () => serializer.serialize(bom, { sortLists: true, space: 2 });
    const digest = createHash("sha256").update(serialize()).digest("hex");
    // A UUID of the kind that its maker may fill.
    bom.serialNumber = "urn:uuid:" + [digest.slice(0, 8), digest.slice(8, 12),
        `8${digest.slice(12, 15)}`, `8${digest.slice(15, 18)}`, digest.slice(18, 30)].join("-");
    return check(serialize()).then((text) => fs.writeFileSync(result, `${text}\n`));
}

/** Returns a bill if it follows CycloneDX's schema, and throws otherwise. */
async function check(text) {
    const errors = await new CDX.Validation.JsonStrictValidator(CDX.Spec.Version.v1dot6).validate(text);
    if (errors !== null) {
        throw new Error(`The bill of materials is wrong: ${JSON.stringify(errors, undefined, 2)}`);
    }
    return text;
}

await main(process.argv.slice(2));

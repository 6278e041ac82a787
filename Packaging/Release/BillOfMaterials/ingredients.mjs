import fs from "node:fs";
import path from "node:path";

import { lines, output } from "./commands.mjs";

/** A build folder of Ninja's, which knows what went into each program. */
export class Build {
    #folder;
    #headersOfObjects = new Map();

    constructor(folder) {
        this.#folder = folder;
        let headers;
        for (const line of lines(output("ninja", ["-C", folder, "--quiet", "-t", "deps"]))) {
            if (line.startsWith(" ")) {
                headers.push(this.#realPath(line.trim()));
            } else {
                headers = [];
                this.#headersOfObjects.set(line.split(":")[0], headers);
            }
        }
    }

    /**
     * The files outside the build folder that a program was made from: { linked, included }, each a
     * sorted list of absolute paths without links.
     */
    ingredients(program) {
        const linked = new Set();
        const included = new Set();
        for (const file of this.#linkerInputs(program)) {
            const objects = this.#objectsIn(file);
            if (objects.length === 0) {
                linked.add(this.#realPath(file));
            }
            for (const object of objects) {
                for (const header of this.#headersOfObjects.get(object)) {
                    included.add(header);
                }
            }
        }
        return { linked: [...linked].sort(), included: [...included].sort() };
    }

    /** Links the program once more, to hear from the linker what it reads. */
    #linkerInputs(program) {
        const command =
            output("ninja", ["-C", this.#folder, "--quiet", "-t", "commands", "-s", program]);
        const traced = command.replace(` -o ${program} `, ` -Wl,-t -o ${program}.traced `);
        if (traced === command) {
            throw new Error(`${program} is not linked as expected: ${command}`);
        }
        const result = path.join(this.#folder, `${program}.traced`);
        const inputs = lines(output("sh", ["-c", `{ ${traced.trim()}; } 2>&1`],
                                    { cwd: this.#folder }));
        fs.rmSync(result);
        return inputs.filter((file) => /\.(o|a)$/.test(file));
    }

    /** Our own objects: the file itself, or the library's members. */
    #objectsIn(file) {
        if (this.#headersOfObjects.has(file)) {
            return [file];
        }
        const { dir, name, ext } = path.parse(file);
        const folder = path.join(dir, "CMakeFiles", `${name.replace(/^lib/, "")}.dir`);
        return ext === ".a" && !path.isAbsolute(file)
            ? [...this.#headersOfObjects.keys()].filter((object) => object.startsWith(`${folder}/`))
            : [];
    }

    #realPath(file) {
        const absolute = path.resolve(this.#folder, file);
        return fs.existsSync(absolute) ? fs.realpathSync(absolute) : absolute;
    }
}

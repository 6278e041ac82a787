import { spawnSync } from "node:child_process";

/** Runs a program and returns what it prints. Throws if it cannot be run or fails. */
export function output(program, args, options = {}) {
    const { status, stdout, stderr, error } =
        spawnSync(program, args, { encoding: "utf8", maxBuffer: 2 ** 30, ...options });
    if (error !== undefined) {
        throw error;
    }
    if (status !== 0) {
        throw new Error(`${program} ends with status ${status}: ${stderr}`);
    }
    return stdout;
}

/** The lines of a text, without empty ones. */
export function lines(text) {
    return text.split("\n").filter((line) => line !== "");
}

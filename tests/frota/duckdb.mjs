// Runs SQL in DuckDB: node duckdb.mjs NPM_FOLDER REQUEST. The request is JSON: commands to run, and queries by
// name, whose rows are printed as JSON.
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';

const [, , npm, request] = process.argv;
const { DuckDBInstance } = createRequire(`${npm}/node_modules/`)('@duckdb/node-api');
const [commands, queries] = JSON.parse(readFileSync(request, 'utf8'));
const connection = await (await DuckDBInstance.create(':memory:')).connect();
for (const command of commands) await connection.run(command);
const answers = {};
for (const [name, query] of Object.entries(queries)) {
    answers[name] = (await connection.runAndReadAll(query)).getRowsJson();
}
console.log(JSON.stringify(answers));

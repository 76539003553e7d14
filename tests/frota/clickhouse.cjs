// Runs SQL in ClickHouse's engine: node clickhouse.cjs NPM_FOLDER REQUEST, as duckdb.mjs.
const { readFileSync } = require('node:fs');

const [, , npm, request] = process.argv;
const { Session } = require(`${npm}/node_modules/chdb`);
const [commands, queries] = JSON.parse(readFileSync(request, 'utf8'));
const session = new Session();
const answers = {};
try {
    // Its engine takes one statement at a time. None of ours has a semicolon but at its end.
    const statements = commands.flatMap((c) => c.split(/;\s*(?:\n|$)/)).filter((s) => s.replace(/^--.*$/gm, '').trim());
    for (const s of statements) {
        try {
            session.query(s);
        } catch (e) {
            throw new Error(`${e.message}\n${s}`);
        }
    }
    for (const [name, query] of Object.entries(queries)) {
        answers[name] = JSON.parse(session.query(query, 'JSONCompact')).data;
    }
} finally {
    session.close();
}
console.log(JSON.stringify(answers));

// Runs a file of SQL in DuckDB, with one thread, and prints the seconds of CPU that it took, then the
// first column of its last result, in ISO-8859-1. Its statements find the data file's path in the
// variable "arquivo".
//
//     node duckdb.mjs PEERS SQL FILE
//
// PEERS is the directory that npm installed into. The start of the process and of the database is not
// counted.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { resolve } from 'node:path';

const [pares, sql, arquivo] = process.argv.slice(2);
const { DuckDBInstance } = createRequire(resolve(pares) + '/')('@duckdb/node-api');
const banco = await DuckDBInstance.create(':memory:', { threads: '1' });
const conexao = await banco.connect();
await conexao.run(`set variable arquivo = '${arquivo.replaceAll("'", "''")}'`);

const inicio = process.cpuUsage();
const resposta = await conexao.runAndReadAll(readFileSync(sql, 'utf8'));
const linhas = resposta.getRows().map(([linha]) => `${linha}\n`);
const { user, system } = process.cpuUsage(inicio);
process.stdout.write(Buffer.from(`${(user + system) / 1e6}\n${linhas.join('')}`, 'latin1'));

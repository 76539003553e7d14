// Twenty requests at a time while the newest day's files are replaced by renaming: every answer is that of the
// old files or that of the new ones.
import fs from 'node:fs';
import { maior, pede } from './pedido.mjs';

const ultimo = 'de=2026-03-11&ate=2026-03-11';  // that is complete
const tres = 'de=2026-03-10&ate=2026-03-12';
const enderecos = ['/', `/dias?${tres}`, `/dias?${tres}&formato=csv`, `/horas?${ultimo}`, `/horas?${ultimo}&formato=csv`,
  `/maiores?${ultimo}`, `/usuario?usuario=${maior}&${tres}`, `/mensagens?usuario=${maior}&${ultimo}`,
  `/mensagens?usuario=igor.silva@correio-livre.example&${ultimo}&formato=csv`, `/mensagens?hora=15&${ultimo}`];
const numeros = (texto) => new Set(texto.replace(/<[^>]*>/g, ' ').match(/\d[\d.,:/]*/g));

/** Half of a day: of both files what lies before noon, and totals of its own. */
function metade(arquivo) {
  const linhas = fs.readFileSync(arquivo, 'latin1').split('\n');
  if (arquivo.includes('compact')) return linhas.slice(0, linhas.length >> 1).join('\n') + '\n';
  const [totais, ...resto] = linhas;
  const t = totais.split(' ').map((n, i) => i < 2 ? n : n >> 1).join(' ');
  return [t, ...resto.map((l) => l.replace(/^(\S+@\S+) (\d+) /, (_, u, n) => `${u} ${n >> 1} `))].join('\n');
}

export default async function carga({ servidor, confere, inteiro }) {
  const pasta = servidor.arquivo('dados/demo/dat/rels_03-26');
  const arquivos = ['mail_stat_11.txt', 'compact_mail_11.txt'].map((n) => `${pasta}/${n}`);
  const versoes = [arquivos.map((a) => fs.readFileSync(a)), arquivos.map((a) => Buffer.from(metade(a), 'latin1'))];
  const dono = fs.statSync(arquivos[0]);
  const troca = (v) => arquivos.forEach((a, i) => {
    fs.writeFileSync(`${a}.novo`, versoes[v][i], { mode: 0o640 });
    fs.chownSync(`${a}.novo`, dono.uid, dono.gid);
    fs.renameSync(`${a}.novo`, a);
  });
  const certas = [];
  for (const v of [1, 0]) {
    troca(v);
    certas[v] = {};
    for (const e of enderecos) certas[v][e] = (await pede(servidor.url + e)).texto;
  }
  confere('old and new differ on every page', enderecos.every((e) => certas[0][e] !== certas[1][e]),
    enderecos.filter((e) => certas[0][e] === certas[1][e]));
  const fim = performance.now() + (inteiro ? 60000 : 15000);
  const errados = [];
  let pedidos = 0;
  let trocas = 0;
  const cliente = async (n) => {
    for (let i = n; performance.now() < fim; ++i) {
      const e = enderecos[i % enderecos.length];
      const r = await pede(servidor.url + e);
      ++pedidos;
      const iguais = [0, 1].some((v) => certas[v][e] === r.texto);
      // A page may have asked for one table before and for another after the change.
      const possiveis = iguais ? null : new Set([...numeros(certas[0][e]), ...numeros(certas[1][e])]);
      const alheios = iguais ? [] : [...numeros(r.texto)].filter((x) => !possiveis.has(x));
      if (r.estado !== 200 || alheios.length || (!iguais && e.includes('csv'))) errados.push(`${e}: ${r.estado} ${alheios.slice(0, 8)}`);
    }
  };
  const trocador = async () => {
    for (; performance.now() < fim; ++trocas) {
      troca(trocas % 2 === 0 ? 1 : 0);
      await new Promise((r) => setTimeout(r, 70));
    }
  };
  await Promise.all([trocador(), ...Array.from({ length: 20 }, (_, n) => cliente(n))]);
  troca(0);
  console.log(`  ${pedidos} requests, ${trocas} replacements`);
  confere('under load every answer is of the old or of the new files', errados.length === 0 && pedidos > 100 && trocas > 20,
    `${errados.length} of ${pedidos}:\n    ${errados.slice(0, 6).join('\n    ')}`);
}

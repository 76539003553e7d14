// Mail made to harm whoever looks at it: every byte that a log can hold, in senders, recipients, ids and texts,
// beside markup, quotes and formulas. It must come out whole, legible, and do nothing.
import fs from 'node:fs';
import { aba, abreNavegador } from './navegador.mjs';
import { juntos, pede } from './pedido.mjs';

const dia = 'relay=hostil&de=2026-03-10&ate=2026-03-10';
/** What a page shows for a byte: its character, or a picture of one that has none. */
const visivel = (b) => b < 32 ? String.fromCharCode(0x2400 + b) : b === 127 ? '\u2421' : String.fromCharCode(b);
/** As somebody copies it from a page. */
const visto = (texto) => texto.replace(/[\x00-\x1f\x7f]/g, (c) => visivel(c.charCodeAt(0)));
const legivel = (b) => b < 128 || b >= 160;
const parametro = (texto) => encodeURIComponent(texto);

/** Ids, senders and recipients as the day file has them, by the byte that is in them. */
function casos(servidor) {
  const achados = new Map();
  const pasta = servidor.arquivo('dados/hostil/dat/rels_03-26');
  for (const linha of fs.readFileSync(`${pasta}/compact_mail_10.txt`, 'latin1').split('\n')) {
    const [, , status, id, a, b] = linha.split(' ');
    const byte = id?.match(/^H[^]D(\d{13})$/) ? id.charCodeAt(1) : null;
    if (byte === null) continue;
    const caso = achados.get(byte) ?? { byte, id };
    if (status === '1') caso.de = b;
    if (status === '9') caso.para = a;
    achados.set(byte, caso);
  }
  return [...achados.values()];
}

/** No byte that acts on a terminal or a browser, no markup that a log could have brought. */
const inerte = (texto) => !/[\x00-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f]/.test(texto) && !/<script>|<img\/|<\/pre><script/i.test(texto);

async function respostas({ servidor, confere }, todos) {
  await juntos(4, todos, async ({ byte, id, de, para }) => {
    const nome = `byte 0x${byte.toString(16)}`;
    const rastro = await pede(`${servidor.url}/rastro?relay=hostil&id=${parametro(id)}`);
    const c = visivel(byte).replace(/[<>&"']/g, (x) => ({ '<': '&lt;', '>': '&gt;', '&': '&amp;', '"': '&quot;', "'": '&#039;' })[x]);
    const textos = [`H${c}D`, `a${c}${byte}`, `b${c}${byte}`, `nao${c}ha`];
    const faltam = legivel(byte) ? textos.filter((t) => !rastro.texto.includes(t)) : [];
    confere(`${nome}: the trace is whole`, rastro.estado === 200 && faltam.length === 0 && inerte(rastro.texto), `${rastro.estado} ${faltam}`);
    if (de.includes(',')) return;  // a list of users is refused
    const pagina = await pede(`${servidor.url}/mensagens?${dia}&usuario=${parametro(de)}`);
    confere(`${nome}: found by its sender`, pagina.texto.match(/<tr>/g)?.length === 2 && inerte(pagina.texto), pagina.estado);
    const csv = await pede(`${servidor.url}/usuario?${dia}&usuario=${parametro(byte % 2 ? de : visto(de))}&formato=csv`);
    confere(`${nome}: has his days`, csv.texto.trim().split('\n').length === 2, csv.texto);
  });
}

export default async function hostil(ctx) {
  const { servidor, confere, modulos } = ctx;
  const todos = casos(servidor);
  confere('every byte has reached the day files', todos.length === 249 && todos.every((c) => c.de && c.para), todos.length);
  await respostas(ctx, todos);
  for (const p of ['/dias?', '/horas?', '/maiores?', '/mensagens?usuario=*&', '/rastro?id=VINTE&', '/usuario?usuario=lista@x.example&']) {
    for (const formato of ['csv', 'excel']) {
      const r = await pede(`${servidor.url}${p}${dia}&formato=${formato}`);
      const celulas = formato === 'excel' ? r.texto.split(/[;\r\n]+/).filter((c) => /^"?[=+@-]|[\x00-\x1f]/.test(c)) : [];
      // Programs get every byte, people a picture of those that have no character.
      const nome = ({ byte }) => formato === 'csv' ? String.fromCharCode(byte) : visivel(byte);
      const faltam = p.includes('*') ? todos.filter((c) => legivel(c.byte) && c.byte !== 34 && !r.texto.includes(`H${nome(c)}D`)) : [];
      confere(`${p} as ${formato} is a file of text`, r.estado === 200 && /^text\/csv/.test(r.cabecalhos['content-type'])
        && /attachment/.test(r.cabecalhos['content-disposition']) && celulas.length === 0 && faltam.length === 0,
      `${r.estado} ${JSON.stringify(celulas.slice(0, 3))} ${faltam.map((c) => c.byte)}`);
    }
  }
  // What the texts would do if they could, they would do here.
  const navegador = await abreNavegador(modulos);
  try {
    const p = await aba(navegador, servidor);
    for (const endereco of [`/?relay=hostil`, `/dias?${dia}`, `/maiores?${dia}`, `/mensagens?usuario=*&${dia}`,
      `/usuario?${dia}&usuario=${parametro(todos[50].de)}`, `/rastro?relay=hostil&id=${parametro(todos[50].id)}`,
      `/mensagens?usuario=${parametro('"><script>alert(1)</script>')}&${dia}`, `/estado?relay=hostil`]) {
      await p.goto(servidor.url + endereco, { waitUntil: 'load' });
      const filhos = await p.$$eval('main script, main img, main iframe, [onerror], [onload]', (l) => l.map((e) => e.outerHTML));
      confere(`${endereco}: nothing runs`, filhos.length === 0 && p.erros.length === 0, `${filhos} ${p.erros.splice(0)}`);
    }
  } finally {
    await navegador.close();
  }
}

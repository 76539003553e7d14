// What an administrator of one domain sees: nothing of others, however he asks.
import fs from 'node:fs';
import { juntos, pede } from './pedido.mjs';

const seu = (nome) => nome.toLowerCase().endsWith('@metalurgica.example');

/** Who is named by the messages of a day, from the file itself. */
function mensagens(arquivo) {
  const todas = new Map();
  for (const linha of fs.readFileSync(arquivo, 'latin1').split('\n')) {
    const [, , status, id, a, b] = linha.split(' ');
    if (status === '1') todas.set(id, { de: b, para: [] });
    if (status === '2' || status === '9') todas.get(id)?.para.push(a);
  }
  return todas;
}

export default async function acesso({ servidor, confere }) {
  const todas = [...mensagens(servidor.arquivo('dados/demo/dat/rels_03-26/compact_mail_11.txt'))];
  const amostra = (de) => todas.filter(([, m]) => de(m)).filter((_, i, l) => i % Math.ceil(l.length / 25) === 0);
  const alheias = amostra((m) => !seu(m.de) && !m.para.some(seu));
  const suas = amostra((m) => seu(m.de));
  const recebidas = amostra((m) => !seu(m.de) && m.para.some(seu) && !m.para.every(seu));
  confere('there are messages of each kind', Math.min(alheias.length, suas.length, recebidas.length) > 10);
  const rastro = (id, resto = '') => pede(`${servidor.restrita}/rastro?id=${id}${resto}`);
  await juntos(4, [...alheias, ...suas, ...recebidas], async ([id, m]) => {
    const alheia = !seu(m.de) && !m.para.some(seu);
    const html = await rastro(id);
    const csv = await rastro(id, '&formato=csv');
    const lista = await pede(`${servidor.restrita}/mensagens?id=${id}&de=2026-03-11&ate=2026-03-11&formato=csv`);
    confere(`${id} of ${alheia ? 'others' : 'his own'}`, html.estado === (alheia ? 404 : 200)
      && lista.texto.includes(id) === !alheia && csv.texto.includes(`${id},`) === !alheia, `${html.estado} ${lista.texto}`);
    const outros = m.para.filter((p) => !seu(p) && !seu(m.de) && p !== m.de);
    const visto = outros.filter((p) => (html.texto + csv.texto + lista.texto).includes(`${p}<`) || csv.texto.includes(p));
    confere(`${id} names no recipient of another domain`, visto.length === 0, visto);
  });
  // What is there and not his looks like what is not there.
  const frase = (t) => t.match(/<main[^]*<\/main>/)[0].replaceAll(alheias[0][0], 'ID').replaceAll('69B0000000000000', 'ID');
  confere('a foreign message looks like none', frase((await rastro(alheias[0][0])).texto) === frase((await rastro('69B0000000000000')).texto));
  const de = alheias[0][1].de;
  const periodo = 'de=2026-03-11&ate=2026-03-11';
  for (const formato of ['', '&formato=csv', '&formato=excel']) {
    for (const p of ['/', '/dias?', '/horas?', `/usuario?usuario=${de}`, `/mensagens?usuario=${de}`, `/mensagens?remetente=${de}`,
      '/mensagens?usuario=*', '/mensagens?hora=10', '/mensagens?min_kb=1', `/mensagens?remetente=${de.slice(0, 4)}*`, '/maiores?',
      '/maiores?dominios=1']) {
      const r = await pede(`${servidor.restrita}${p}${p === '/' ? '?' : '&'}${periodo}${formato}`);
      const nomes = [...new Set(r.texto.match(/[\w.-]+@[\w.-]+\.(?:example|test|invalid)/g) ?? [])];
      const alheios = nomes.filter((n) => !seu(n) && !p.includes(n));
      confere(`${p}${formato} names nobody of another domain`, r.estado < 500 && alheios.length === 0, `${r.estado} ${alheios}`);
    }
  }
  const maiores = await pede(`${servidor.restrita}/maiores?${periodo}`);
  confere('his own largest users are there', /@metalurgica\.example/.test(maiores.texto), maiores.texto.slice(0, 500));
}

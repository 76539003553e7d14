// Requests without a browser, and the pages that the tests ask for.
import http from 'node:http';
import zlib from 'node:zlib';

/** What comes back: status, headers, the bytes as sent, and as text. */
export const pede = (url, opcoes = {}) => new Promise((pronto, falha) => {
  const inicio = performance.now();
  http.request(url, { headers: { 'Accept-Encoding': 'gzip' }, ...opcoes }, (r) => {
    const pedacos = [];
    r.on('data', (p) => pedacos.push(p));
    r.on('end', () => {
      const cru = Buffer.concat(pedacos);
      const corpo = r.headers['content-encoding'] === 'gzip' && cru.length ? zlib.gunzipSync(cru) : cru;
      pronto({ estado: r.statusCode, cabecalhos: r.headers, cru, corpo, texto: corpo.toString(), ms: performance.now() - inicio });
    });
  }).on('error', falha).end(opcoes.corpo);
});

/** Runs all at most `n` at a time. */
export async function juntos(n, coisas, faz) {
  const fila = [...coisas];
  await Promise.all(Array.from({ length: n }, async () => {
    while (fila.length) await faz(fila.shift());
  }));
}

const tres = 'de=2026-03-10&ate=2026-03-12';
const mes = 'relay=mes&de=2026-03-01&ate=2026-03-31';
export const maior = 'nfe@metalurgica.example';

/** Every page, with what makes it look differently. */
export const paginas = {
  resumo: '/',
  'resumo do mes': '/?relay=mes',
  dias: `/dias?${tres}`,
  'dias do mes': `/dias?${mes}`,
  horas: `/horas?${tres}`,
  'horas do mes': `/horas?${mes}`,
  maiores: `/maiores?${tres}`,
  'maiores dominios': `/maiores?${tres}&dominios=1&por=bytes_recebidos`,
  'usuario vazio': '/usuario',
  usuario: `/usuario?${tres}&usuario=${maior}`,
  'mensagens vazio': '/mensagens',
  mensagens: `/mensagens?${tres}&usuario=${maior}`,
  'rastro vazio': '/rastro',
  'rastro de vinte': '/rastro?relay=hostil&id=VINTE',
  estado: '/estado',
  definicoes: '/definicoes',
  errada: '/mensagens?de=2026-02-30&min_kb=muito&hora=99&usuario=a,b',
  'sem dados': '/dias?relay=sem',
  vazio: '/?relay=vazio',
  ingles: `/dias?${tres}&lingua=en`,
};

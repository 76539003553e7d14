// What each address answers: status, sentence, headers, downloads; whatever an address may hold.
import { execFileSync } from 'node:child_process';
import { juntos, maior, paginas, pede } from './pedido.mjs';

const figuras = ['/', '/dias', '/horas', '/usuario?usuario=x', '/maiores', '/mensagens?usuario=x', '/rastro?id=X'];
const com = (p, resto) => `${p}${p.includes('?') ? '&' : '?'}${resto}`;
const umDia = 'de=2026-03-12&ate=2026-03-12';

/** Address, status, what must stand in the answer. */
const casos = [
  ...Object.entries(paginas).map(([nome, p]) => [p, { errada: 422, 'sem dados': 503 }[nome] ?? 200]),
  ...figuras.map((p) => [com(p, 'relay=sem'), 503, /<main[^]*sem\/dat/]),
  ...figuras.filter((p) => !p.includes('X')).map((p) => [com(p, 'relay=torto&de=2026-03-10&ate=2026-03-11'), 503]),
  ...figuras.map((p) => [com(p, 'relay=vazio'), 200, /^(?![^]*<table)[^]*Nenhum dia consolidado/]),
  ['/estado?relay=sem', 200, /sem\/dat/],
  ['/definicoes?relay=sem', 200, /<h2/],
  ['/dias?de=2026-02-30', 422, /id="de-erro">[^<]*2026-02-30/],
  ['/dias?de=2026-03-12&ate=2026-03-10', 422, /id="ate-erro">[^<]*2026-03-12/],
  ['/maiores?por=tudo', 422, /id="por-erro">[^<]*tudo/],
  ['/mensagens?usuario=a,b', 422, /id="usuario-erro">[^<]*a,b/],
  ['/mensagens?usuario=x&cursor=nada', 422, /nada/],
  ['/rastro?id=a%20b', 422, /id="id-erro"/],
  ['/rastro?id=6AAAAAAAAAAAAAAA', 404, /6AAAAAAAAAAAAAAA/],
  [`/usuario?usuario=ninguem@metalurgica.example&${umDia}`, 200, /class="(?:nota|vazio)"/],
  ['/mensagens?relay=mes&de=2026-03-15&ate=2026-03-15&usuario=x@y', 200, /class="vazio"/],
  ['/dias?relay=mes&de=2026-03-14&ate=2026-03-16', 200, /15\/03\/2026/],
  ['/nada', 404], ['/dias/', 404], ['/index.php/dias', 404], ['/estilo.css/x', 404], ['/fornecidos/', 404],
];

/** What nobody types. */
const estranhos = ['%00', '%ff%fe', 'x'.repeat(3000), '9999-12-31', '2026-13-45', '-1', '99999999999999999999', '../../etc/passwd',
  '%F0%9F%98%80', "'%22><b>", '%0d%0aSet-Cookie:%20a=b', '*'];
const nomes = ['de', 'ate', 'usuario', 'remetente', 'destinatario', 'id', 'min_kb', 'max_kb', 'hora', 'cursor', 'por', 'dominios',
  'lingua', 'relay', 'formato'];

function enderecosEstranhos() {
  const todos = [];
  for (const valor of estranhos) {
    for (const p of ['/', '/dias', '/horas', '/usuario', '/maiores', '/mensagens', '/rastro', '/estado', '/definicoes']) {
      todos.push(`${p}?${nomes.filter((n) => n !== 'formato').map((n) => `${n}=${valor}`).slice(0, valor.length > 99 ? 2 : 99).join('&')}`);
    }
    for (const n of nomes) todos.push(`/mensagens?${n === 'usuario' ? '' : 'usuario=a@b&'}${n}=${valor}`);
  }
  for (const n of nomes) todos.push(`/mensagens?${n}[]=a`, `/usuario?${n}[a][b]=c`);
  return todos;
}

/** A page's download and the command that prints the same. */
const baixas = [
  [`/dias?de=2026-03-10&ate=2026-03-12`, ['dias', '--de=2026-03-10', '--ate=2026-03-12']],
  [`/horas?de=2026-03-10&ate=2026-03-11`, ['horas', '--de=2026-03-10', '--ate=2026-03-11']],
  [`/maiores?por=recebidas&de=2026-03-10&ate=2026-03-12`, ['topo', '--por=recebidas', '--n=99999', '--de=2026-03-10', '--ate=2026-03-12']],
  [`/maiores?dominios=1&${umDia}`, ['topo', '--dominios', '--n=99999', '--de=2026-03-12']],
  [`/usuario?usuario=${maior}&${umDia}`, ['dias', `--usuario=${maior}`, '--de=2026-03-12']],
  [`/mensagens?usuario=${maior}&${umDia}`, ['mensagens', `--usuario=${maior}`, '--de=2026-03-12']],
  [`/mensagens?remetente=a*&max_kb=3&${umDia}`, ['mensagens', '--remetente=a*', '--max-kb=3', '--de=2026-03-12']],
  [`/rastro?relay=hostil&id=VINTE`, ['rastro', 'VINTE', '--relay=hostil']],
];

async function baixa({ servidor, confere, vtmrel }) {
  for (const [endereco, comando] of baixas) {
    for (const [formato, opcao] of [['csv', '--formato=csv'], ['excel', '--excel']]) {
      const r = await pede(`${servidor.url}${endereco}&formato=${formato}`);
      const relay = comando.some((c) => c.startsWith('--relay')) ? [] : ['--relay=demo'];
      const esperado = execFileSync(vtmrel, [...comando, ...relay, opcao, `--config=${servidor.arquivo('dados/vt-mrel.ini')}`],
        { maxBuffer: 1 << 28 });
      const linhas = r.texto.split('\n').length;
      confere(`${endereco} as ${formato} is what the command prints`, r.corpo.equals(esperado) && linhas > 2,
        `${r.estado}, ${linhas} lines: ${r.texto.slice(0, 200)}\n    ${esperado.toString().slice(0, 200)}`);
    }
  }
}

async function folheia({ servidor, confere }) {
  const linhas = [];
  let endereco = `/mensagens?usuario=${maior}&${umDia}`;
  for (let n = 0; endereco && n < 100; ++n) {
    const { texto } = await pede(servidor.url + endereco);
    linhas.push(...[...texto.matchAll(/<tr><th scope="row"[^>]*><a href="[^"]*id=([^"&]+)/g)].map((m) => m[1]));
    const mais = texto.match(/rel="next" href="([^"]+)"/);
    endereco = mais ? '/' + mais[1].replaceAll('&amp;', '&').replace(/^\//, '') : null;
  }
  const { texto } = await pede(`${servidor.url}/mensagens?usuario=${maior}&${umDia}&formato=csv`);
  const ids = texto.trim().split('\n').slice(1).map((l) => l.split(',')[0]).reverse();
  confere('the pages of a search are its download, backwards', ids.length > 400 && ids.join() === linhas.join(),
    `${ids.length} rows, ${linhas.length} on pages`);
}

export default async function pedidos(ctx) {
  const { servidor, confere } = ctx;
  const servidores = [servidor.url, servidor.urlDoApache];
  await juntos(4, casos, async ([endereco, estado, texto]) => {
    for (const url of servidores) {
      const r = await pede(url + endereco);
      confere(`${endereco} answers ${estado}`, r.estado === estado && (!texto || texto.test(r.texto)),
        `${url === servidor.url ? 'nginx' : 'Apache'}: ${r.estado} ${r.texto.replace(/^[^]*<main/, '').slice(0, 600)}`);
      if (url === servidor.url) {
        const c = r.cabecalhos;
        confere(`${endereco}: its headers`, c['x-content-type-options'] === 'nosniff' && !c['x-powered-by']
          && (c['content-security-policy'] ?? '').includes("default-src 'self'") && c['referrer-policy'] === 'same-origin'
          || endereco.startsWith('/fornecidos'), JSON.stringify(c));
      }
    }
  });
  for (const url of servidores) {
    for (const method of ['POST', 'PUT', 'DELETE', 'OPTIONS', 'PATCH']) {
      const r = await pede(`${url}/dias`, { method });
      confere(`${method} answers 405`, r.estado === 405 && r.cabecalhos.allow === 'GET, HEAD', `${r.estado} ${r.cabecalhos.allow}`);
    }
    const r = await pede(`${url}/dias`, { method: 'HEAD' });
    confere('HEAD answers without a body', r.estado === 200 && r.cru.length === 0);
  }
  await juntos(6, enderecosEstranhos(), async (endereco) => {
    const r = await pede(servidor.url + endereco);
    confere(`${endereco.slice(0, 120)} is neither a 5xx nor slow`, r.estado < 500 && r.ms < 5000
      && !r.cabecalhos['set-cookie'], `${r.estado}, ${r.ms.toFixed(0)} ms`);
  });
  await baixa(ctx);
  await folheia(ctx);
  const outra = await pede(`${servidor.outra}/`);
  confere('another pool has neither the module nor the data', outra.texto === '[false,false]' || process.getuid() !== 0, outra.texto);
}

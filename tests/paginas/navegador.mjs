// Every page in a browser, narrow and wide, light and dark; then what one does with them.
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { createRequire } from 'node:module';
import { maior, paginas, pede } from './pedido.mjs';

export async function abreNavegador(modulos) {
  const puppeteer = createRequire(path.resolve(modulos, 'x.js'))('puppeteer-core');
  return puppeteer.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--disable-dev-shm-usage'] });
}

export const larguras = [390, 1280];
export const temas = ['light', 'dark'];
export const veste = async (p, largura, tema) => {
  await p.setViewport({ width: largura, height: 900 });
  await p.emulateMediaFeatures([{ name: 'prefers-color-scheme', value: tema }, { name: 'prefers-reduced-motion', value: 'reduce' }]);
};

/** A tab that remembers what went wrong in it. */
export async function aba(navegador, servidor) {
  const p = await navegador.newPage();
  p.erros = [];
  p.on('console', (m) => ['error', 'warn'].includes(m.type()) && p.erros.push(m.text()));
  p.on('pageerror', (e) => p.erros.push(e.message));
  p.on('requestfailed', (r) => p.erros.push(`${r.url()} ${r.failure().errorText}`));
  p.on('request', (r) => new URL(r.url()).origin === servidor.url || r.url().startsWith('data:') || p.erros.push(`leaves the site: ${r.url()}`));
  p.on('dialog', (d) => { p.erros.push(`a script ran: ${d.message()}`); d.dismiss(); });
  return p;
}

/** What is wrong with how the page looks now. */
const queixas = (p) => p.evaluate(async () => {
  const { violations, incomplete } = await axe.run(document, { resultTypes: ['violations', 'incomplete'] });
  const diz = (r) => `${r.id}: ${r.nodes.slice(0, 3).map((n) => `${n.target} ${n.any[0]?.message ?? ''}`).join('; ')}`;
  // Fields have the arrow or the calendar of their kind as a picture: these were looked at.
  for (const r of incomplete) r.nodes = r.nodes.filter((n) => !/^(?:#\w+|select|input)$/.test(n.target) && !/non-text/.test(n.any[0]?.message));
  const largo = document.documentElement.scrollWidth - innerWidth;
  return [...violations.map(diz), ...incomplete.filter((r) => r.id === 'color-contrast' && r.nodes.length).map((r) => 'not decided, ' + diz(r)),
    ...(largo > 0 ? [`${largo} pixels too wide`] : [])];
});

async function todas({ servidor, confere, modulos }, p) {
  const axe = fs.readFileSync(path.join(modulos, 'axe-core/axe.min.js'), 'utf8');
  for (const [nome, endereco] of Object.entries(paginas)) {
    await veste(p, 1280, 'light');
    await p.goto(servidor.url + endereco, { waitUntil: 'load' });
    await p.evaluate(axe);
    for (const largura of larguras) {
      for (const tema of temas) {
        await veste(p, largura, tema);
        const achadas = await queixas(p);
        confere(`${nome} at ${largura}, ${tema}`, achadas.length === 0, achadas.join('\n    '));
      }
    }
    // The browser itself says on the console that a page was 4xx or 5xx.
    const erros = p.erros.splice(0).filter((e) => !/status of (?:422|503)/.test(e));
    confere(`${nome}: console and network`, erros.length === 0, erros.join('\n    '));
  }
}

async function html({ servidor, confere, modulos }) {
  const pasta = fs.mkdtempSync(servidor.arquivo('html-'));
  for (const [nome, endereco] of Object.entries(paginas)) {
    fs.writeFileSync(path.join(pasta, `${nome}.html`), (await pede(servidor.url + endereco)).texto);
  }
  let saida = '';
  try {
    execFileSync('java', ['-jar', path.join(modulos, 'vnu-jar/build/dist/vnu.jar'), '--format', 'json', pasta], { stdio: 'pipe', maxBuffer: 1 << 26 });
  } catch (e) {
    saida = e.stderr.toString();
  }
  const erros = saida === '' ? [] : JSON.parse(saida).messages.filter((m) => m.type !== 'info' || m.subType === 'warning');
  const frases = [...new Set(erros.map((m) => `${path.basename(m.url)}:${m.lastLine} ${m.message} ${m.extract ?? ''}`))];
  confere('the HTML of all pages', frases.length === 0, frases.slice(0, 8).join('\n    '));
}

/** The points drawn are the cells shown, day by day; a day without a row is a gap. */
async function grafico({ servidor, confere }, p) {
  for (const endereco of [paginas.dias, paginas['dias do mes'], paginas.usuario]) {
    await p.goto(servidor.url + endereco, { waitUntil: 'load' });
    await p.waitForSelector('figure.grafico canvas');
    const r = await p.evaluate(() => [...document.querySelectorAll('figure.grafico')].map((figura) => {
      const tabela = document.getElementById(figura.dataset.tabela);
      const nomes = [...tabela.tHead.rows[0].cells].map((c) => c.dataset.c);
      const celula = (linha, nome) => linha.cells[nomes.indexOf(nome)];
      const dias = new Map([...tabela.tBodies[0].rows].map((l) => [celula(l, 'dia').dataset.sort, l]));
      const cru = (c) => +(c.dataset.sort ?? c.textContent.replace(/\D/g, ''));
      const [xs, ...series] = figura.grafico.data;
      const colunas = figura.dataset.colunas.split(' ');
      return {
        dias: dias.size, pontos: xs.length, buracos: xs.length - dias.size,
        erradas: xs.filter((x, i) => {
          const linha = dias.get(new Date(x * 1000).toISOString().slice(0, 10));
          return !colunas.every((c, k) => linha ? cru(celula(linha, c)) === series[k][i] : series[k][i] === null);
        }),
      };
    }));
    confere(`${endereco}: the chart is its table`, r.length > 0 && r.every((g) => g.erradas.length === 0 && g.dias > 0)
      && (!endereco.includes('mes') || r[0].buracos === 1), JSON.stringify(r));
  }
}

/** By keyboard alone: the head of a column is reached, and sorts up and down. */
async function ordena({ servidor, confere }, p) {
  await p.goto(`${servidor.url}${paginas['dias do mes']}`, { waitUntil: 'load' });
  const coluna = () => p.evaluate(() => [...document.querySelectorAll('#totais tbody tr')].map((l) => +(l.cells[3].dataset.sort
    ?? l.cells[3].textContent.replace(/\D/g, ''))));
  const crescente = (l) => l.every((v, i) => i === 0 || l[i - 1] <= v);
  await p.focus('#totais th:nth-child(4) button');
  const estados = [];
  for (let n = 0; n < 2; ++n) {
    await p.keyboard.press('Enter');
    await new Promise((r) => setTimeout(r, 300));
    const valores = await coluna();
    estados.push(crescente(valores) ? 1 : crescente(valores.toReversed()) ? -1 : 0);
  }
  const anuncia = await p.$eval('#totais th:nth-child(4)', (t) => t.getAttribute('aria-sort'));
  confere('a column sorts by keyboard, up and down, and says so', estados[0] * estados[1] === -1 && /ending$/.test(anuncia ?? ''),
    `${estados} ${anuncia}`);
}

/** From a search to a trace and back: the query is as it was. */
async function vaiEVolta({ servidor, confere }, p) {
  await p.goto(`${servidor.url}/mensagens?lingua=en&de=2026-03-11&ate=2026-03-11`, { waitUntil: 'load' });
  await p.type('#usuario', maior);
  await Promise.all([p.waitForNavigation(), p.keyboard.press('Enter')]);
  const busca = p.url();
  const linhas = await p.$$eval('#mensagens tbody tr', (l) => l.length);
  await Promise.all([p.waitForNavigation(), p.click('#mensagens tbody a')]);
  const rastro = new URL(p.url());
  await Promise.all([p.waitForNavigation(), p.goBack()]);
  const campos = await p.evaluate(() => ['usuario', 'de', 'ate'].map((n) => document.getElementById(n).value).join());
  confere('search, trace, back: the same query', p.url() === busca && linhas === 200 && campos === `${maior},2026-03-11,2026-03-11`,
    `${p.url()} ${linhas} ${campos}`);
  confere('a trace keeps language and period', rastro.pathname === '/rastro' && rastro.searchParams.get('lingua') === 'en'
    && rastro.searchParams.get('de') === '2026-03-11', rastro);
  // A cell of the hours leads to the messages of that hour.
  await p.goto(`${servidor.url}/horas?de=2026-03-11&ate=2026-03-11`, { waitUntil: 'load' });
  const destino = await p.$$eval('main a[href*="hora="]', (l) => l.map((a) => a.href).find((h) => /hora=10/.test(h)));
  await p.goto(destino, { waitUntil: 'load' });
  const horas = await p.$$eval('#mensagens tbody tr', (l) => [...new Set(l.map((r) => r.innerText.match(/ (\d\d):\d\d/)?.[1]))]);
  confere('a cell of the hours leads to its messages', horas.join() === '10', `${destino} ${horas}`);
}

/** Sums of the hours by day are the sums of the hours, and these the command's. */
async function horas({ servidor, confere }, p) {
  await p.goto(servidor.url + paginas['horas do mes'], { waitUntil: 'load' });
  const numeros = await p.evaluate(() => [...document.querySelectorAll('table')].map((t) => [...t.querySelectorAll('tbody tr')]
    .map((l) => [...l.cells].map((c) => +(c.dataset.sort ?? c.textContent.replace(/\D/g, ''))))));
  const [um, mapa] = numeros[0].length === 24 ? numeros : numeros.toReversed();
  const porHora = um.map((l) => l[1] + l[3]);
  const noMapa = um.map((_, h) => mapa.reduce((s, l) => s + l[h + 1], 0));
  confere('the map of hours adds up to the hours', porHora.join() === noMapa.join() && mapa.length === 30 && Math.max(...porHora) > 99,
    `${mapa.length} days\n    ${porHora}\n    ${noMapa}`);
}

/** Twenty recipients; a message on its way; what a help desk reads out. */
async function rastros({ servidor, confere }, p) {
  await p.goto(`${servidor.url}/rastro?relay=hostil&id=VINTE`, { waitUntil: 'load' });
  const texto = await p.$eval('main', (m) => m.innerText);
  const faltam = Array.from({ length: 20 }, (_, i) => `d${i + 1}@y.example`).filter((d) => !texto.includes(d));
  confere('twenty recipients are there', faltam.length === 0, faltam);
  await p.goto(`${servidor.url}/rastro?relay=hostil&id=CAMINHO`, { waitUntil: 'load' });
  const meio = await p.$eval('main', (m) => m.innerText);
  confere('a message on its way is told as such', /caminho|em curso|não terminou/i.test(meio) && !/[Ee]ntregue em/.test(meio), meio);
}

export default async function navegador(ctx) {
  const n = await abreNavegador(ctx.modulos);
  try {
    const p = await aba(n, ctx.servidor);
    await todas(ctx, p);
    await html(ctx);
    await veste(p, 1280, 'light');
    for (const faz of [grafico, ordena, vaiEVolta, horas, rastros]) {
      await faz(ctx, p);
      const erros = p.erros.splice(0);
      ctx.confere(`${faz.name}: console and network`, erros.length === 0, erros.join('\n    '));
    }
  } finally {
    await n.close();
  }
}

// Takes the pictures of the pages that the documents show.
//
//     node fotos.mjs MODULES URL DIR
import path from 'node:path';
import { createRequire } from 'node:module';

const [modulos, url, pasta] = process.argv.slice(2);
const periodo = 'de=2026-03-24&ate=2026-03-30';

/** Picture: address, width, height, theme. */
const fotos = {
  resumo: ['/', 1100, 860, 'light'],
  horas: [`/horas?${periodo}`, 1100, 620, 'dark', '.calor'],
  mensagens: [`/mensagens?${periodo}&usuario=nfe@metalurgica.example`, 1100, 620, 'light'],
  rastro: ['', 390, 844, 'light'],
};

const puppeteer = createRequire(path.resolve(modulos, 'x.js'))('puppeteer-core');
const navegador = await puppeteer.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--disable-dev-shm-usage'] });
const p = await navegador.newPage();
for (let n = 0; n < 20 && !await fetch(url).then(() => true, () => false); ++n) await new Promise((r) => setTimeout(r, 500));
// A message that some got and some did not tells most.
const csv = await (await fetch(`${url}/mensagens?${periodo}&remetente=nfe@metalurgica.example&formato=csv`)).text();
let rastro = null;
for (const [, id] of csv.matchAll(/^([^,]+),.*,com_erro$/mg)) {
  const texto = await (await fetch(`${url}/rastro?id=${id}`)).text();
  rastro ??= /e-recusado/.test(texto) && /e-entregue/.test(texto) ? `/rastro?id=${id}` : null;
  if (rastro) break;
}
for (const [nome, [endereco, width, height, tema, ate]] of Object.entries(fotos)) {
  await p.setViewport({ width, height });
  await p.emulateMediaFeatures([{ name: 'prefers-color-scheme', value: tema }, { name: 'prefers-reduced-motion', value: 'reduce' }]);
  await p.goto(url + (endereco || rastro), { waitUntil: 'networkidle0' });
  if (ate) await p.$eval(ate, (e) => e.scrollIntoView({ block: 'center' }));
  await p.screenshot({ path: path.join(pasta, `${nome}.png`) });
  console.log(`${nome}.png: ${endereco || rastro}`);
}
await navegador.close();

// Tries the pages as delivered: php-fpm behind nginx and Apache, a real browser in front.
//
//     node painel.mjs MODULES DATA EXTENSION FPM VTMREL [--full] [PART ...]
//
// MODULES is the folder of the npm packages, DATA what dados.php has made. The last line counts.
import { Servidor } from '../../dev.d/servidor.mjs';

const [modulos, dados, extensao, fpm, vtmrel, ...resto] = process.argv.slice(2);
const inteiro = resto.includes('--full');
const pedidas = resto.filter((p) => p !== '--full');
const partes = pedidas.length ? pedidas : ['pedidos', 'acesso', 'tamanhos', 'navegador', 'hostil', 'carga'];

let passaram = 0;
let falharam = 0;
/** One test; `detalhes` says what was seen where it was not as it should be. */
const confere = (nome, bom, detalhes = '') => {
  if (bom) {
    ++passaram;
  } else {
    ++falharam;
    console.log(`FAILED: ${nome}${detalhes === '' ? '' : `\n    ${String(detalhes).slice(0, 1500)}`}`);
  }
};

const servidor = new Servidor({ dados, extensao, fpm });
for (const s of ['SIGINT', 'SIGTERM']) process.once(s, () => servidor.fecha().finally(() => process.exit(130)));
try {
  await servidor.abre();
  for (const parte of partes) {
    const inicio = performance.now();
    const { default: faz } = await import(`./${parte}.mjs`);
    await faz({ servidor, confere, modulos, vtmrel, inteiro });
    console.log(`${parte}: ${((performance.now() - inicio) / 1000).toFixed(1)} s`);
  }
  const queixas = servidor.registros();
  confere('servers and engine have nothing to complain about', queixas === '', queixas);
} catch (e) {
  confere('the tests themselves', false, e.stack);
} finally {
  await servidor.fecha();
}
console.log(`${passaram} passed, ${falharam} failed`);
process.exitCode = falharam ? 1 : 0;

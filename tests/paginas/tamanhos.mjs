// What comes over the line, as the delivered nginx compresses it.
import fs from 'node:fs';
import { paginas, pede } from './pedido.mjs';

const primeira = 40 * 1024;
const outras = (nome) => (['mensagens', 'horas do mes'].includes(nome) ? 12 : 6) * 1024;

export default async function tamanhos({ servidor, confere }) {
  for (const [nome, endereco] of Object.entries(paginas)) {
    const pagina = await pede(servidor.url + endereco);
    const arquivos = [...pagina.texto.matchAll(/<(?:link|script)[^>]+(?:href|src)="([^"]+)"/g)].map((m) => new URL(m[1], servidor.url + endereco));
    let soma = pagina.cru.length;
    for (const a of arquivos) {
      const r = await pede(a);
      soma += r.cru.length;
      confere(`${a.pathname} is the file`, r.corpo.equals(fs.readFileSync(servidor.arquivo('codigo/paginas/public', a.pathname))));
      confere(`${a.pathname} stays in the browser`, r.estado === 200 && /immutable/.test(r.cabecalhos['cache-control'])
        && /\d/.test(a.pathname + a.search), `${r.estado} ${r.cabecalhos['cache-control']}`);
    }
    console.log(`  ${nome}: ${pagina.cru.length} bytes, with ${arquivos.length} files ${soma}`);
    confere(`${nome}: the page itself`, pagina.cru.length <= outras(nome), pagina.cru.length);
    confere(`${nome}: a first visit`, soma <= primeira + outras(nome) - 6 * 1024, soma);
  }
}

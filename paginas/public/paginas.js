// What a browser with scripts adds: buttons in the heads of tables that sort, and charts over tables.
(function () {
  'use strict';
  const lingua = document.documentElement.lang;

  // The sorter listens for clicks on heads; a button makes them reachable by keyboard.
  for (const cabeca of document.querySelectorAll('table.sortable thead th')) {
    const botao = document.createElement('button');
    botao.type = 'button';
    botao.append(...cabeca.childNodes);
    cabeca.append(botao);
  }

  const bruto = (celula) => celula.dataset.sort ?? celula.textContent.trim();
  const dia = (texto) => Date.parse(texto + 'T00:00:00Z') / 1000;
  const numero = (n) => n == null ? '' : n.toLocaleString(lingua);
  const data = (s) => new Date(s * 1000).toLocaleDateString(lingua, { timeZone: 'UTC' });
  const curta = (s) => new Date(s * 1000).toLocaleDateString(lingua, { timeZone: 'UTC', day: '2-digit', month: '2-digit' });

  // The points of a chart are the cells of its table, by day; a day without a row is a gap.
  function pontos(tabela, colunas) {
    const cabecas = [...tabela.tHead.rows[0].cells];
    const lugares = ['dia', ...colunas].map((nome) => cabecas.findIndex((c) => c.dataset.c === nome));
    const linhas = [...tabela.tBodies[0].rows]
      .map((linha) => lugares.map((i, k) => k === 0 ? dia(bruto(linha.cells[i])) : +bruto(linha.cells[i])))
      .sort((a, b) => a[0] - b[0]);
    const cheias = [];
    for (const linha of linhas) {
      const antes = cheias.at(-1);
      for (let x = antes ? antes[0] + 86400 : linha[0]; x < linha[0]; x += 86400) {
        cheias.push([x, ...colunas.map(() => null)]);
      }
      cheias.push(linha);
    }
    return {
      nomes: lugares.map((i) => cabecas[i].textContent.trim()),
      dados: lugares.map((_, k) => cheias.map((linha) => linha[k])),
    };
  }

  function desenha(figura) {
    const tabela = document.getElementById(figura.dataset.tabela);
    const { nomes, dados } = pontos(tabela, figura.dataset.colunas.split(' '));
    if (dados[0].length < 2) return;
    figura.hidden = false;
    const lugar = figura.firstElementChild;
    const estilo = getComputedStyle(document.documentElement);
    const cor = (nome) => estilo.getPropertyValue(nome).trim();
    const eixo = { stroke: cor('--pico-muted-color'), grid: { stroke: cor('--pico-muted-border-color'), width: 1 } };
    figura.grafico?.destroy();
    figura.grafico = new uPlot({
      width: lugar.clientWidth,
      height: Math.min(280, Math.max(180, lugar.clientWidth / 3)),
      tzDate: (s) => uPlot.tzDate(new Date(s * 1000), 'Etc/UTC'),
      axes: [
        { ...eixo, values: (_, xs) => xs.map(curta), space: 60, incrs: [1, 2, 7, 14, 28, 91, 182, 364].map((n) => n * 86400) },
        { ...eixo, values: (_, ys) => ys.map(numero), size: 64 },
      ],
      scales: { y: { range: (_, min, max) => [0, Math.max(1, max * 1.05)] } },
      series: [
        { label: nomes[0], value: (_, x) => x == null ? '' : data(x) },
        ...nomes.slice(1).map((nome, i) => ({
          label: nome,
          stroke: cor('--serie-' + (i + 1)),
          width: 2,
          dash: i === 2 ? [4, 3] : [],
          points: { show: dados[0].length < 40, size: 5 },
          value: (_, y) => numero(y),
        })),
      ],
    }, dados, lugar);
  }

  const figuras = [...document.querySelectorAll('figure.grafico')];
  if (figuras.length && window.uPlot) {
    figuras.forEach(desenha);
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => figuras.forEach(desenha));
    let espera;
    addEventListener('resize', () => {
      clearTimeout(espera);
      espera = setTimeout(() => figuras.forEach(desenha), 150);
    });
  }
})();

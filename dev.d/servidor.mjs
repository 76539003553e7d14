// The delivered configurations of php-fpm, nginx and Apache, run from a folder of their own: only addresses,
// paths and users are others than on an appliance.
import { execFileSync, spawn } from 'node:child_process';
import fs from 'node:fs';
import net from 'node:net';
import os from 'node:os';
import path from 'node:path';

const raiz = path.resolve(import.meta.dirname, '..');
const root = process.getuid() === 0;

export const portaLivre = () => new Promise((pronto) => {
  const s = net.createServer().listen(0, '127.0.0.1', () => {
    const { port } = s.address();
    s.close(() => pronto(port));
  });
});

const existe = (base, nome) => fs.readFileSync(base, 'latin1').split('\n').some((l) => l.startsWith(nome + ':'));
// As on an appliance, where it has such users; else others that every Debian has.
const usuario = existe('/etc/passwd', 'relweb') ? 'relweb' : 'nobody';
const grupo = existe('/etc/group', 'relreports') ? 'relreports' : 'daemon';

/** A delivered file with other values: every text to be replaced must be in it. */
function adapta(arquivo, trocas) {
  let texto = fs.readFileSync(path.join(raiz, 'extras', arquivo), 'utf8');
  for (const [de, para] of trocas) {
    if (!texto.includes(de)) throw new Error(`${arquivo} has no "${de}"`);
    texto = texto.replaceAll(de, para);
  }
  return texto;
}

export class Servidor {
  processos = [];
  paginas = {};

  /** @param dados the folder that dados.php has made */
  constructor({ dados, extensao, fpm }) {
    Object.assign(this, { extensao, fpm });
    this.base = fs.mkdtempSync(path.join(os.tmpdir(), 'vt-painel-'));
    fs.chmodSync(this.base, 0o755);
    // The code as installed, readable for the pool, whoever may read the checkout.
    for (const parte of ['src', 'paginas', 'bin']) fs.cpSync(path.join(raiz, parte), this.arquivo('codigo', parte), { recursive: true });
    fs.copyFileSync(extensao, this.arquivo('vt_mrel.so'));
    fs.cpSync(dados, this.arquivo('dados'), { recursive: true });
    const ini = fs.readFileSync(path.join(dados, 'vt-mrel.ini'), 'utf8').replaceAll(dados, this.arquivo('dados'));
    fs.writeFileSync(this.arquivo('dados/vt-mrel.ini'), ini);
    if (root) {
      // As the nightly run leaves them: the group may read, nobody else.
      execFileSync('chgrp', ['-R', grupo, this.arquivo('dados')]);
      execFileSync('chmod', ['-R', 'u=rwX,g=rX,o=', this.arquivo('dados')]);
    }
    fs.writeFileSync(this.arquivo('acesso.php'),
      `<?php return new Vorna\\Mrel\\Paginas\\AcessoLista('ana', ['metalurgica.example']);`);
    fs.mkdirSync(this.arquivo('outra'));
    fs.writeFileSync(this.arquivo('outra/index.php'),
      `<?php echo json_encode([class_exists('vt_mrel'), is_readable('${this.arquivo('dados/demo/dat')}')]);`);
  }

  arquivo(...nomes) { return path.join(this.base, ...nomes); }

  inicia(programa, argumentos) {
    const saida = fs.openSync(this.arquivo(path.basename(programa) + '.saida'), 'a');
    const p = spawn(programa, argumentos, { stdio: ['ignore', saida, saida] });
    this.processos.push(p);
    process.on('exit', () => p.kill());  // whatever ended us
    return p;
  }

  async abre() {
    this.portas = [];
    for (let i = 0; i < 4; ++i) this.portas.push(await portaLivre());
    this.pools();
    const faltam = () => ['vt-mrel', 'restrita', 'outra'].some((n) => !fs.existsSync(this.arquivo(`${n}.sock`)));
    for (let i = 0; i < 100 && faltam(); ++i) await new Promise((r) => setTimeout(r, 100));
    this.nginx();
    this.apache();
    [this.url, this.restrita, this.outra, this.urlDoApache] = this.portas.map((p) => `http://127.0.0.1:${p}`);
    await Promise.all(this.portas.map((p) => this.espera(`http://127.0.0.1:${p}/definicoes`)));
    return this;
  }

  async espera(url) {
    for (let i = 0; i < 100; ++i) {
      if (await fetch(url).then((r) => r.ok, () => false)) return;
      await new Promise((r) => setTimeout(r, 100));
    }
    throw new Error(`${url} does not answer:\n${this.registros()}`);
  }

  pool(nome, trocas = []) {
    return adapta('php-fpm/vt-mrel.conf', [
      ['[vt-mrel]', `[${nome}]`],
      ['user = relweb', root ? `user = ${usuario}` : ''],
      ['group = relreports', root ? `group = ${grupo}` : ''],
      ['listen.owner = www-data', root ? 'listen.owner = www-data' : ''],
      ['listen.group = www-data', root ? 'listen.group = www-data' : ''],
      ['/run/php/vt-mrel.sock', this.arquivo(`${nome}.sock`)],
      ['= vt_mrel.so', `= ${this.arquivo('vt_mrel.so')}`],
      ['= /etc/vt-mrel.ini', `= ${this.arquivo('dados/vt-mrel.ini')}`],
      ...trocas,
    ]);
  }

  pools() {
    const restrita = this.pool('restrita', [[';env[VT_MREL_ACESSO] = /etc/vt-mrel.acesso.php',
      `env[VT_MREL_ACESSO] = ${this.arquivo('acesso.php')}`]]);
    const outra = `[outra]\n${root ? 'user = www-data\ngroup = www-data\nlisten.owner = www-data\n' : ''}`
      + `listen = ${this.arquivo('outra.sock')}\npm = static\npm.max_children = 1\n`;
    fs.writeFileSync(this.arquivo('fpm.conf'), `[global]\nerror_log = ${this.arquivo('fpm.log')}\n`
      + this.pool('vt-mrel') + restrita + outra);
    this.inicia(this.fpm, ['-F', '-y', this.arquivo('fpm.conf')]);
  }

  nginx() {
    const publica = this.arquivo('codigo/paginas/public');
    const site = (porta, nome) => adapta('nginx/vt-mrel.conf', [
      ['127.0.0.1:8025', `127.0.0.1:${porta}`],
      ['/usr/share/vt-mrel/paginas/public', publica],
      ['/run/php/vt-mrel.sock', this.arquivo(`${nome}.sock`)],
    ]);
    const outra = `server { listen 127.0.0.1:${this.portas[2]}; location / { include /etc/nginx/fastcgi_params;
      fastcgi_param SCRIPT_FILENAME ${this.arquivo('outra/index.php')}; fastcgi_pass unix:${this.arquivo('outra.sock')}; } }`;
    const temporarios = ['client_body', 'proxy', 'fastcgi', 'uwsgi', 'scgi']
      .map((t) => `${t}_temp_path ${this.arquivo('nginx-' + t)};`).join('\n');
    fs.writeFileSync(this.arquivo('nginx.conf'), `${root ? 'user www-data;' : ''} worker_processes 1; daemon off;
      pid ${this.arquivo('nginx.pid')}; error_log ${this.arquivo('nginx.log')};
      events { worker_connections 256; }
      http { include /etc/nginx/mime.types; access_log off; ${temporarios}
      ${(site(this.portas[0], 'vt-mrel') + site(this.portas[1], 'restrita')).replaceAll('include ', 'include /etc/nginx/')}
      ${outra} }`);
    this.inicia('/usr/sbin/nginx', ['-e', this.arquivo('nginx.log'), '-c', this.arquivo('nginx.conf')]);
  }

  apache() {
    const modulos = ['mpm_event', 'authz_core', 'authz_host', 'proxy', 'proxy_fcgi', 'headers', 'deflate', 'filter',
      'dir', 'mime'].map((m) => `LoadModule ${m}_module /usr/lib/apache2/modules/mod_${m}.so`).join('\n');
    const site = adapta('apache/vt-mrel.conf', [
      ['127.0.0.1:8025', `127.0.0.1:${this.portas[3]}`],
      ['/usr/share/vt-mrel/paginas/public', this.arquivo('codigo/paginas/public')],
      ['/run/php/vt-mrel.sock', this.arquivo('vt-mrel.sock')],
    ]);
    fs.writeFileSync(this.arquivo('apache.conf'), `${modulos}\nServerName localhost\nTypesConfig /etc/mime.types
PidFile ${this.arquivo('apache.pid')}\nErrorLog ${this.arquivo('apache.log')}\nDefaultRuntimeDir ${this.base}
${root ? 'User www-data\nGroup www-data' : ''}\n${site}`);
    this.inicia('/usr/sbin/apache2', ['-f', this.arquivo('apache.conf'), '-D', 'FOREGROUND']);
  }

  /** What servers and engine have to complain about, but that a pool is busy. */
  registros() {
    return fs.readdirSync(this.base).filter((n) => /\.(log|saida)$/.test(n))
      .map((n) => fs.readFileSync(this.arquivo(n), 'latin1')).join('')
      .split('\n').filter((l) => /warn|error|crit|alert|emerg|fatal|failed/i.test(l) && !/seems busy|pm\.max_children/.test(l)).join('\n');
  }

  async fecha() {
    for (const p of this.processos) {
      if (p.exitCode !== null) continue;
      const fim = new Promise((r) => p.once('exit', r));
      p.kill('SIGTERM');
      await fim;
    }
    fs.rmSync(this.base, { recursive: true, force: true });
  }
}

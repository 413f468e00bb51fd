// Shared pieces of the browser tests: a `nocturnel serve` on a free loopback port with a
// temporary program folder (the built catalogues linked in), and Debian's chromium, headless,
// through playwright-core (which never downloads a browser of its own).
import { spawn, spawnSync } from 'node:child_process';
import { mkdtempSync, symlinkSync, rmSync, existsSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import net from 'node:net';
import http from 'node:http';
import { readFile } from 'node:fs/promises';
import { chromium } from 'playwright-core';

export const BIN = process.env.NOCTURNEL_BIN;
export const DATA = process.env.NOCTURNEL_TEST_DATA;
export const CHROMIUM = process.env.NOCTURNEL_CHROMIUM || '/usr/bin/chromium';

// A fixed summer night at the default site (48.1 N, 1.8 W of... east): Vega high in the sky.
export const MOMENT = ['--date', '2024-07-15', '--time', '23:30'];

export const PHONE = { width: 390, height: 844 };

export function ready() {
  if (!BIN || !existsSync(BIN)) return 'NOCTURNEL_BIN does not name the built nocturnel';
  if (!DATA || !existsSync(DATA)) return 'NOCTURNEL_TEST_DATA does not name the built catalogues';
  if (!existsSync(CHROMIUM)) return `${CHROMIUM} is missing (Debian package chromium)`;
  return '';
}

export function freePort() {
  return new Promise((resolve, reject) => {
    const s = net.createServer();
    s.unref();
    s.on('error', reject);
    s.listen(0, '127.0.0.1', () => { const { port } = s.address(); s.close(() => resolve(port)); });
  });
}

// A fresh program folder whose data/ is the built catalogues.
export function makeHome() {
  const home = mkdtempSync(join(tmpdir(), 'nocturnel-web-'));
  symlinkSync(DATA, join(home, 'data'));
  return home;
}

// Runs the command line on a program folder (for set-up that is not under test).
export function cli(home, ...args) {
  const r = spawnSync(BIN, ['--home', home, ...args], { encoding: 'utf8', timeout: 20000 });
  if (r.status !== 0) throw new Error(`nocturnel ${args.join(' ')} failed: ${r.stderr || r.stdout}`);
  return r.stdout;
}

async function waitForServer(url, child, ms = 60000) {
  const end = Date.now() + ms;
  while (Date.now() < end) {
    if (child.exitCode !== null) throw new Error(`nocturnel serve exited with ${child.exitCode}`);
    try {
      const r = await fetch(url + '/api/now');
      if (r.ok) return;
    } catch { /* not listening yet */ }
    await new Promise((r) => setTimeout(r, 50));
  }
  throw new Error('nocturnel serve did not answer in time');
}

// While editing the page: NOCTURNEL_TEST_WEB_DIR=web serves the page's files from that folder
// and passes /api/ on to the program, so a change is tried without building the program again.
const TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.svg': 'image/svg+xml',
  '.png': 'image/png', '.webmanifest': 'application/manifest+json' };
async function pageProxy(dir, apiPort) {
  const port = await freePort();
  const proxy = http.createServer(async (q, r) => {
    const path = new URL(q.url, 'http://x').pathname;
    if (path.startsWith('/api/')) {
      const up = http.request({ host: '127.0.0.1', port: apiPort, path: q.url, method: q.method, headers: q.headers },
        (a) => { r.writeHead(a.statusCode, a.headers); a.pipe(r); });
      up.on('error', () => { r.writeHead(502); r.end(); });
      q.pipe(up);
      return;
    }
    const file = join(dir, path === '/' ? 'index.html' : path.replace(/\.\.+/g, ''));
    try {
      const body = await readFile(file);
      r.writeHead(200, { 'Content-Type': TYPES[file.slice(file.lastIndexOf('.'))] || 'application/octet-stream' });
      r.end(body);
    } catch { r.writeHead(404); r.end(); }
  });
  await new Promise((ok) => proxy.listen(port, '127.0.0.1', ok));
  return { url: `http://127.0.0.1:${port}`, close: () => proxy.close() };
}

// Starts `nocturnel serve` on a free port; stop() ends it, restart() starts it again on the
// same folder and port.
export async function startServer({ home = makeHome(), moment = MOMENT } = {}) {
  const port = await freePort();
  const url = `http://127.0.0.1:${port}`;
  const server = { home, port, url, child: null, log: '' };
  server.start = async () => {
    const child = spawn(BIN, ['--home', home, ...moment, 'serve', '--port', String(port)], { stdio: ['ignore', 'pipe', 'pipe'] });
    child.stdout.on('data', (d) => { server.log += d; });
    child.stderr.on('data', (d) => { server.log += d; });
    server.child = child;
    await waitForServer(url, child);
  };
  server.stop = async () => {
    const child = server.child;
    if (!child || child.exitCode !== null) return;
    const exited = new Promise((r) => child.once('exit', r));
    child.kill('SIGTERM');
    const timer = setTimeout(() => child.kill('SIGKILL'), 5000);
    await exited;
    clearTimeout(timer);
  };
  server.restart = async () => { await server.stop(); await server.start(); };
  await server.start();
  const proxy = process.env.NOCTURNEL_TEST_WEB_DIR ? await pageProxy(process.env.NOCTURNEL_TEST_WEB_DIR, port) : null;
  if (proxy) server.url = proxy.url;
  server.cleanup = async () => { proxy?.close(); await server.stop(); rmSync(home, { recursive: true, force: true }); };
  return server;
}

// Headless chromium with a fresh profile; a phone-sized touch context.
export async function launchBrowser({ viewport = PHONE, deviceScaleFactor = 2 } = {}) {
  const profile = mkdtempSync(join(tmpdir(), 'nocturnel-chromium-'));
  const context = await chromium.launchPersistentContext(profile, {
    executablePath: CHROMIUM,
    headless: true,
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
    viewport, deviceScaleFactor, hasTouch: true, isMobile: true,
  });
  context.setDefaultTimeout(20000);   // generous: the sanitizer build draws charts slowly
  const close = async () => { await context.close(); rmSync(profile, { recursive: true, force: true }); };
  return { context, close };
}

// The message box currently shown: {caption, title, detail}, or null.
export async function messageBox(page, timeout = 5000) {
  const box = page.locator('.modal.message').first();
  await box.waitFor({ state: 'visible', timeout });
  return {
    caption: await box.locator('h2').textContent(),
    title: await box.locator('.title').textContent(),
    detail: (await box.locator('.detail').count()) ? await box.locator('.detail').textContent() : '',
    close: () => box.locator('button').click(),
  };
}

// Opens a screen of the main window through its menu button.
export async function openScreen(page, label) {
  if (!page.url().endsWith('/') && !page.url().endsWith('#')) await page.evaluate(() => { location.hash = ''; });
  await page.locator('nav.menus button', { hasText: label }).first().click();
}

// Reads and closes every message box shown, in order: [{caption, title, detail}].
export async function drainMessages(page, firstTimeout = 5000) {
  const seen = [];
  for (let timeout = firstTimeout; ; timeout = 300) {
    let box;
    try { box = await messageBox(page, timeout); } catch { return seen; }
    seen.push({ caption: box.caption, title: box.title, detail: box.detail });
    await box.close();
  }
}

// Two browser tabs at once on the one engine: both draw their chart and find their objects,
// requests interleaved, and neither sees the other's answers.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { ready, startServer, launchBrowser } from './harness.mjs';

let server, browser;

before(async () => {
  const missing = ready();
  if (missing) throw new Error(missing);
  server = await startServer();
  browser = await launchBrowser({ deviceScaleFactor: 1 });
});
after(async () => { await browser?.close(); await server?.cleanup(); });

test('two tabs draw charts and find objects at the same time', async () => {
  const [a, b] = [await browser.context.newPage(), await browser.context.newPage()];
  await Promise.all([a.goto(server.url + '/#/chart'), b.goto(server.url + '/#/chart')]);
  const loaded = (p, n) => p.waitForFunction((k) => Number(document.querySelector('[data-testid=chart]')?.dataset.loaded || 0) > k, n);
  await Promise.all([loaded(a, 0), loaded(b, 0)]);
  // Zoom both at once, several times: each tab ends on its own level.
  for (let i = 0; i < 3; i++) {
    await Promise.all([a.locator('[data-testid=zoom-in]').click(), b.locator('[data-testid=zoom-in]').click(), b.locator('[data-testid=zoom-in]').click()]);
  }
  await a.waitForFunction(() => document.querySelector('[data-testid=chart]').dataset.zoom === '3');
  await b.waitForFunction(() => document.querySelector('[data-testid=chart]').dataset.zoom === '6');
  await Promise.all([a.evaluate(() => { location.hash = '#/finder/M 31'; }), b.evaluate(() => { location.hash = '#/finder/HIP 91262'; })]);
  const [na, nb] = await Promise.all([a.locator('[data-testid=found] .name').textContent(), b.locator('[data-testid=found] .name').textContent()]);
  assert.match(na, /M\s*31|NGC\s*224/);
  assert.match(nb, /Vega/);
});

test('installable: a manifest with icons, and the page opens offline once loaded', async () => {
  const page = await browser.context.newPage();
  await page.goto(server.url + '/');
  const manifest = await (await fetch(server.url + '/manifest.webmanifest')).json();
  assert.equal(manifest.display, 'standalone');
  for (const icon of manifest.icons) {
    const r = await fetch(server.url + '/' + icon.src);
    assert.equal(r.status, 200, icon.src);
  }
  await page.evaluate(() => navigator.serviceWorker.ready);
  await page.reload();   // now under the worker's control
  await page.evaluate(() => navigator.serviceWorker.ready);
  await browser.context.setOffline(true);
  try {
    await page.reload();
    const menus = await page.locator('nav.menus section h2').allTextContents();
    assert.deepEqual(menus, ['Tools', 'Assistants', 'Devices', 'Settings']);
  } finally {
    await browser.context.setOffline(false);
  }
});

// The chart at phone size: it loads at the screen's size and pixel ratio, pans under the
// finger, zooms by buttons and by pinch, and a tap on Vega names it.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { ready, startServer, launchBrowser, openScreen } from './harness.mjs';

let server, browser, page;

before(async () => {
  const missing = ready();
  if (missing) throw new Error(missing);
  server = await startServer();
  browser = await launchBrowser();
  page = await browser.context.newPage();
  await page.goto(server.url + '/');
});
after(async () => { await browser?.close(); await server?.cleanup(); });

const loads = () => page.locator('[data-testid=chart]').getAttribute('data-loaded').then(Number);
async function waitForNewChart(before) {
  await page.waitForFunction((n) => Number(document.querySelector('[data-testid=chart]')?.dataset.loaded || 0) > n, before);
}

test('the main window shows the four menus', async () => {
  const menus = await page.locator('nav.menus section h2').allTextContents();
  assert.deepEqual(menus, ['Tools', 'Assistants', 'Devices', 'Settings']);
  for (const b of await page.locator('nav.menus button').all()) {
    const box = await b.boundingBox();
    assert.ok(box.height >= 48 && box.width >= 48, 'touch target of at least 48 px');
  }
});

test('the chart fills the phone screen at its pixel ratio', async () => {
  await openScreen(page, 'Sky Chart');
  await waitForNewChart(0);
  const size = await page.locator('img.sky').evaluate((img) => ({
    w: img.naturalWidth, h: img.naturalHeight, cssW: img.clientWidth, cssH: img.clientHeight }));
  assert.equal(size.cssW, 390);
  assert.ok(size.cssH > 700, `chart height ${size.cssH}`);
  assert.equal(size.w, size.cssW * 2, 'rendered for devicePixelRatio 2');
  assert.match(await page.locator('[data-testid=infobar]').textContent(), /FOV 180°/);
});

test('dragging pans at once and a new chart comes on release', async () => {
  const n = await loads();
  await page.mouse.move(200, 400);
  await page.mouse.down();
  await page.mouse.move(150, 350, { steps: 5 });
  const moving = await page.locator('img.sky').evaluate((img) => img.style.transform);
  assert.match(moving, /translate\(-50px, -50px\)/);
  await page.mouse.up();
  await waitForNewChart(n);
  assert.equal(await page.locator('img.sky').evaluate((img) => img.style.transform), '');
});

test('zoom buttons and a pinch walk the zoom levels', async () => {
  let n = await loads();
  await page.locator('[data-testid=zoom-in]').click();
  await waitForNewChart(n);
  assert.equal(await page.locator('[data-testid=chart]').getAttribute('data-zoom'), '1');
  assert.match(await page.locator('[data-testid=infobar]').textContent(), /FOV 150°/);
  n = await loads();
  // Two fingers spread from 100 px to 300 px apart: three times closer, 150° → 45° (level 5).
  await page.evaluate(() => {
    const chart = document.querySelector('[data-testid=chart]');
    const fire = (type, id, x, y) => chart.dispatchEvent(new PointerEvent(type, { pointerId: id, clientX: x, clientY: y, bubbles: true, pointerType: 'touch', isPrimary: id === 1 }));
    fire('pointerdown', 1, 145, 400); fire('pointerdown', 2, 245, 400);
    for (let i = 1; i <= 5; i++) { fire('pointermove', 1, 145 - 20 * i, 400); fire('pointermove', 2, 245 + 20 * i, 400); }
    fire('pointerup', 1, 45, 400); fire('pointerup', 2, 345, 400);
  });
  await waitForNewChart(n);
  assert.equal(await page.locator('[data-testid=chart]').getAttribute('data-zoom'), '5');
  n = await loads();
  await page.locator('[data-testid=zoom-out]').click();
  await waitForNewChart(n);
  assert.equal(await page.locator('[data-testid=chart]').getAttribute('data-zoom'), '4');
});

test('a tap on Vega names it', async () => {
  // The finder centres the chart on Vega; the star is then drawn under the chart's centre.
  await page.evaluate(() => { location.hash = '#/finder/HIP 91262'; });
  await page.locator('[data-testid=found] .name').waitFor();
  await page.locator('[data-testid=found] button', { hasText: 'Centre' }).click();
  await page.locator('[data-testid=chart]').waitFor();
  await waitForNewChart(0);
  const box = await page.locator('[data-testid=chart]').boundingBox();
  // A finger lands a little off the star: the identification tolerates it.
  await page.touchscreen.tap(box.x + box.width / 2 + 6, box.y + box.height / 2 - 5);
  const sheet = page.locator('[data-testid=object]');
  await sheet.waitFor();
  assert.match(await sheet.locator('.name').textContent(), /Vega/);
  const text = await sheet.textContent();
  assert.match(text, /Mag/);
  assert.match(text, /RA .*Dec/);
  assert.match(text, /Alt .*Az/);
  for (const label of ['GoTo', 'Sync', 'Centre']) assert.equal(await sheet.locator('button', { hasText: label }).count(), 1);
});

test('time steps forward and back by the "Time Step" preference', async () => {
  const moment = () => page.locator('[data-testid=moment]').textContent();
  assert.equal(await moment(), '2024-07-15 23:30');
  let n = await loads();
  await page.locator('[data-testid=time-forward]').click();
  await waitForNewChart(n);
  assert.equal(await moment(), '2024-07-15 23:31', 'a fresh record steps by "1 mn"');
  await fetch(server.url + '/api/prefs', { method: 'PUT', body: JSON.stringify({ timeStep: '1 Day' }) });
  await page.reload();
  await waitForNewChart(0);
  n = await loads();
  await page.locator('[data-testid=time-back]').click();
  await waitForNewChart(n);
  assert.equal(await moment(), '2024-07-14 23:31');
});

test('landscape phone: the chart follows the new size', async () => {
  const n = await loads();
  await page.setViewportSize({ width: 844, height: 390 });
  await waitForNewChart(n);
  const w = await page.locator('img.sky').evaluate((img) => img.clientWidth);
  assert.equal(w, 844);
});

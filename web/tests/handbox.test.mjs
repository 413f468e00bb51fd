// The hand box against a simulated LX200 mount on a pseudo-terminal: connect, rates,
// press-and-hold that stops on release, stop all, and a GoTo that ends with the mount on Vega.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { ready, startServer, launchBrowser, makeHome, BIN, drainMessages } from './harness.mjs';

let server, browser, page, mount, home;
let mountLog = '';

before(async () => {
  const missing = ready();
  if (missing) throw new Error(missing);
  home = makeHome();
  mount = spawn(BIN, ['--home', home, 'scope', '--drive', 'LX200', 'simulate'], { stdio: ['ignore', 'pipe', 'pipe'] });
  mount.stdout.on('data', (d) => { mountLog += d; });
  mount.stderr.on('data', (d) => { mountLog += d; });
  const end = Date.now() + 10000;
  while (!/\/dev\/pts\/\d+/.test(mountLog) && Date.now() < end) await new Promise((r) => setTimeout(r, 50));
  const device = mountLog.match(/\/dev\/pts\/\d+/)?.[0];
  assert.ok(device, 'the simulator names its pseudo-terminal: ' + mountLog);
  server = await startServer({ home });
  server.device = device;
  browser = await launchBrowser({ deviceScaleFactor: 1 });
  page = await browser.context.newPage();
  await page.goto(server.url + '/');
});
after(async () => { await browser?.close(); await server?.cleanup(); mount?.kill('SIGINT'); });

const position = async () => {
  const r = await (await fetch(server.url + '/api/scope/position')).json();
  return r.position || r;
};

test('Preference 1/6 chooses the LX200 drive on the simulator\'s device', async () => {
  await page.goto(server.url + '/#/prefs/1');
  await page.locator('select[name=scopeDrive]').selectOption({ label: 'LX200' });
  await page.locator('input[name=scopeDevice]').fill(server.device);
  await page.locator('[data-testid=ok]').click();
  await page.locator('nav.menus').waitFor();
});

test('connect reads the mount and shows its position', async () => {
  await page.goto(server.url + '/#/scope');
  await page.locator('[data-testid=connect]').click();
  await page.locator('[data-testid=scope-status]', { hasText: 'Connected' }).waitFor({ timeout: 20000 });
  await page.waitForFunction(() => document.querySelector('[data-testid=position]').dataset.ra !== undefined, null, { timeout: 20000 });
  const ra = Number(await page.locator('[data-testid=position]').getAttribute('data-ra'));
  assert.ok(Math.abs(ra - 5.5) < 0.1, `the simulator starts at 5.5 h, read ${ra}`);
});

test('a rate and press-and-hold reach the mount, release stops it', async () => {
  assert.deepEqual(await drainMessages(page, 300), [], 'no message so far');
  // Each operation opens the port and lets it settle: allow for it.
  const slow = { timeout: 20000 };
  await page.locator('[data-rate="3"]').click();
  await page.locator('[data-rate="3"].on', { hasText: 'Guide' }).waitFor(slow);
  const north = page.locator('[data-direction=n]');
  const box = await north.boundingBox();
  assert.ok(box.width >= 48 && box.height >= 48, 'a gloved finger fits the key');
  const sent = [];
  page.on('request', (r) => { if (/\/api\/scope\/(move|stop)$/.test(r.url())) sent.push(r.url().split('/').pop() + ' ' + r.postData()); });
  const answered = (what) => page.waitForResponse((r) => r.url().endsWith('/api/scope/' + what), slow);
  await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
  const moved = answered('move');
  await page.mouse.down();
  assert.equal(await north.evaluate((b) => b.classList.contains('held')), true);
  assert.equal((await moved).status(), 200);
  const stopped = answered('stop');
  await page.mouse.up();
  assert.equal(await north.evaluate((b) => b.classList.contains('held')), false);
  assert.equal((await stopped).status(), 200);
  assert.deepEqual(sent, ['move {"dir":"n"}', 'stop {"dir":"n"}']);
  // Released, the mount holds still: two reads agree.
  const [a, b] = [await position(), await position()];
  assert.deepEqual([a.ra, a.dec], [b.ra, b.dec], 'the mount holds still once N is released');
  // A finger taken by the system (pointercancel) stops the move as well.
  const east = page.locator('[data-direction=e]');
  await east.dispatchEvent('pointerdown', { pointerId: 7, pointerType: 'touch', isPrimary: true, bubbles: true });
  const cancelled = answered('stop');
  await east.dispatchEvent('pointercancel', { pointerId: 7, pointerType: 'touch', isPrimary: true, bubbles: true });
  await cancelled;
  assert.deepEqual(sent.slice(2), ['move {"dir":"e"}', 'stop {"dir":"e"}']);
  // "Stop" stops every axis: the mount then holds still.
  const all = answered('stop');
  await page.locator('[data-testid=stop-all]').click();
  assert.equal((await all).status(), 200);
});

test('a held key whose page loses the network: the engine stops the move itself', async () => {
  const slow = { timeout: 20000 };
  const north = page.locator('[data-direction=n]');
  const box = await north.boundingBox();
  const before = await position();
  await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
  const moved = page.waitForResponse((r) => r.url().endsWith('/api/scope/move'), slow);
  const renewed = page.waitForResponse((r) => r.url().endsWith('/api/scope/move/renew'), slow);
  await page.mouse.down();
  assert.equal((await moved).status(), 200);
  assert.equal((await (await renewed).json()).held, true, 'the held move is renewed');
  // The network goes: neither the renewals nor the release reach the engine any more.
  await page.route('**/api/scope/**', (route) => route.abort());
  await new Promise((r) => setTimeout(r, 2000));
  const a = await position();
  await new Promise((r) => setTimeout(r, 1000));
  const b = await position();
  assert.ok(a.dec > before.dec, `the mount turned north while the key was held (${before.dec} -> ${a.dec})`);
  assert.deepEqual([a.ra, a.dec], [b.ra, b.dec], 'the engine stopped the mount a second after the renewals stopped');
  // The network comes back: the next renewal learns that the move is over and the key lets go.
  await page.unroute('**/api/scope/**');
  await page.waitForFunction(() => !document.querySelector('[data-direction=n]').classList.contains('held'), null, slow);
  await page.mouse.up();
  assert.deepEqual(await drainMessages(page, 300), [], 'no message: the stop went through');
});

test('GoTo Vega ends with the mount at Vega', async () => {
  await page.locator('input[name=target]').fill('HIP 91262');
  await page.locator('input[name=target]').press('Enter');
  await page.locator('[data-testid=chosen]', { hasText: 'Vega' }).waitFor({ timeout: 20000 }).catch(async (e) => {
    throw new Error(`${e.message}\nThe page showed:\n${await page.locator('body').innerText()}`);
  });
  const went = page.waitForResponse((r) => r.url().endsWith('/api/scope/goto'), { timeout: 20000 });
  await page.locator('[data-testid=goto]').click();
  assert.equal((await went).status(), 200);
  // The mount reports Vega's place of date (J2000 18h36m56s +38°47'01" moved on by precession).
  const p = await position();
  assert.equal(p.connected, true);
  assert.ok(Math.abs(p.ra - 18.6156) < 0.03, `RA ${p.ra} h`);
  assert.ok(Math.abs(p.dec - 38.7836) < 0.1, `Dec ${p.dec}°`);
  // Disconnect closes the port: the read-out and the chart's marker stop.
  await page.locator('[data-testid=disconnect]').click();
  await page.locator('[data-testid=scope-status]', { hasText: 'Not connected' }).waitFor();
  assert.equal((await position()).connected, false);
});

// SkyRoamer and the observer logs from the page: a selection run shows its objects, a list is
// saved and loaded back by name, a log made with "Log it" appears in the listing, the new
// screens keep their touch targets large and turn red in night mode.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { ready, startServer, launchBrowser, openScreen, drainMessages } from './harness.mjs';

let server, browser, page;

before(async () => {
  const missing = ready();
  if (missing) throw new Error(missing);
  server = await startServer();
  browser = await launchBrowser({ deviceScaleFactor: 1 });
  page = await browser.context.newPage();
  await page.goto(server.url + '/');
  await page.locator('nav.menus').waitFor();
});
after(async () => { await browser?.close(); await server?.cleanup(); });

const listButtons = () => page.locator('[data-testid=list] button');

// Chooses the first option of a criterion whose text starts with `prefix`.
async function choose(key, prefix) {
  const value = await page.locator(`#roam-${key} option`).evaluateAll(
    (options, p) => options.find((o) => o.textContent.startsWith(p))?.value, prefix);
  assert.ok(value !== undefined, `${key}: no choice starting "${prefix}"`);
  await page.locator(`#roam-${key}`).selectOption(value);
}

test('a SkyRoamer run from the page lists its objects, and a tap gives the card', async () => {
  await openScreen(page, 'SkyRoamer');
  await page.locator('#roam-visibility').waitFor();
  assert.equal(await page.locator('[data-testid=criteria] label').first().textContent(), 'Visibility:');
  await choose('constellation', 'Andromeda');
  await choose('catalog', 'Messier');
  await page.locator('[data-action=new]').click();
  await page.locator('[data-testid=list] button', { hasText: 'M31' }).waitFor();
  assert.equal(await listButtons().count(), 3);
  assert.match(await page.locator('[data-testid=stages]').textContent(), /Messier/);
  await page.locator('[data-testid=list] button', { hasText: 'M31' }).click();
  const card = page.locator('[data-testid=object]');
  await card.waitFor();
  assert.match(await card.locator('h3').textContent(), /M31/);
  assert.equal(await card.locator('button', { hasText: 'GoTo' }).count(), 1);
  assert.match(await page.locator('[data-testid=next]').textContent(), /^Next: .* \(1\/3\)$/);
});

test('a list saved by name comes back from the list picker', async () => {
  await page.locator('#list-name').fill('Autumn');
  await page.locator('[data-action=save-list]').click();
  const line = page.locator('[data-testid=lists] button', { hasText: 'Autumn, 3' });
  await line.waitFor();
  // "-" with the same criteria empties the current list, the picker brings it back.
  await page.locator('[data-action=remove]').click();
  await page.locator('[data-testid=list] .note', { hasText: 'The selection list is empty.' }).waitFor();
  await line.click();
  await page.locator('[data-testid=list] button', { hasText: 'M31' }).waitFor();
  assert.equal(await listButtons().count(), 3);
  // After a reload of the page the list is still the current one.
  await page.reload();
  await page.locator('[data-testid=list] button', { hasText: 'M31' }).waitFor();
  assert.equal(await page.locator('[data-testid=lists] button').allTextContents().then((t) => t.join('|')), 'Autumn, 3');
});

test('"Log it" opens the log form; the saved log is in the listing', async () => {
  await page.locator('[data-testid=list] button', { hasText: 'M31' }).click();
  await page.locator('[data-testid=object] button', { hasText: 'Log it' }).click();
  await page.locator('[data-testid=log-form]').waitFor();
  assert.equal(await page.locator('#log-object').inputValue(), 'M31');
  await page.locator('#log-seeing').selectOption({ label: 'Good' });
  await page.locator('#log-note').fill('dust lane seen');
  await page.locator('[data-action=save]').click();
  const entry = page.locator('[data-testid=logs] button', { hasText: 'M31' });
  await entry.waitFor();
  assert.match(await entry.textContent(), /^M31 {2}2024-07-15 23:30$/);
  await entry.click();
  await page.locator('[data-testid=log-form]').waitFor();
  assert.equal(await page.locator('#log-note').inputValue(), 'dust lane seen');
  assert.equal(await page.locator('#log-seeing option:checked').textContent(), 'Good');
  // The catalogue's magnitude and type came as defaults.
  assert.equal(await page.locator('#log-type').inputValue(), 'Galaxy');
  const boxes = await drainMessages(page, 300);
  assert.deepEqual(boxes, []);
});

test('Export asks its question first and tells how many logs it wrote', async () => {
  await page.evaluate(() => { location.hash = '#/logs'; });
  await page.locator('[data-testid=logs] button', { hasText: 'M31' }).waitFor();
  await page.locator('[data-action=export]').click();
  const question = page.locator('.modal.question');
  await question.waitFor();
  assert.equal(await question.locator('p').textContent(), 'Do you want to export your Observer Logs to a text file ?');
  await question.locator('button', { hasText: 'Yes' }).click();
  const boxes = await drainMessages(page);
  assert.deepEqual(boxes.map((b) => b.title), ['1 Observer log exported.']);
});

// Touch targets of the shown controls smaller than 48 CSS pixels.
function smallTargets() {
  return page.evaluate(() => [...document.querySelectorAll('#screen button, #screen input, #screen select')]
    .filter((n) => n.getClientRects().length)
    .map((n) => ({ n, r: n.getBoundingClientRect() }))
    .filter(({ r }) => r.height < 48 || r.width < 48)
    .map(({ n, r }) => `${n.tagName} ${n.id || n.textContent} ${r.width}x${r.height}`));
}

// Colours of the shown elements that are not red.
function nonRedStyles() {
  return page.evaluate(() => {
    const bad = [];
    const parse = (c) => (c.match(/[\d.]+/g) || []).map(Number);
    for (const node of document.querySelectorAll('body, body *')) {
      if (!node.getClientRects().length) continue;
      const s = getComputedStyle(node);
      for (const prop of ['color', 'background-color', 'border-top-color']) {
        const [r, g, b, a = 1] = parse(s[prop]);
        if (a === 0 || (prop === 'border-top-color' && s.borderTopWidth === '0px')) continue;
        if (g > r * 0.45 + 6 || b > r * 0.45 + 6) bad.push(`${node.tagName.toLowerCase()}.${node.className} ${prop} ${s[prop]}`);
      }
    }
    return bad;
  });
}

// Pixels of the screen as shown that are not red: {count, sample}.
async function nonRedPixels() {
  const png = (await page.screenshot()).toString('base64');
  return page.evaluate(async (data) => {
    const img = new Image();
    img.src = 'data:image/png;base64,' + data;
    await img.decode();
    const c = document.createElement('canvas');
    c.width = img.width; c.height = img.height;
    const g = c.getContext('2d');
    g.drawImage(img, 0, 0);
    const px = g.getImageData(0, 0, c.width, c.height).data;
    let count = 0; let sample = '';
    for (let i = 0; i < px.length; i += 4) {
      const [r, gr, b] = [px[i], px[i + 1], px[i + 2]];
      if (gr > r * 0.45 + 6 || b > r * 0.45 + 6) { count++; if (!sample) sample = `${r},${gr},${b} at ${(i / 4) % c.width},${Math.floor(i / 4 / c.width)}`; }
    }
    return { count, sample };
  }, png);
}

test('the new screens have large touch targets and are red in night mode', async () => {
  await page.locator('#night').click();
  assert.equal(await page.evaluate(() => document.documentElement.dataset.night), 'Bright');
  const shown = { roamer: '[data-testid=list] button', logs: '[data-testid=logs] button', 'logs/M31': '#log-note', 'logs/new/M 13': '#log-note' };
  for (const [hash, selector] of Object.entries(shown)) {
    await page.evaluate((h) => { location.hash = '#/' + h; }, hash);
    await page.locator(selector).first().waitFor();
    await page.waitForTimeout(200);
    assert.deepEqual(await smallTargets(), [], `${hash}: touch targets under 48 px`);
    assert.deepEqual(await nonRedStyles(), [], `${hash}: colours that are not red`);
    const pixels = await nonRedPixels();
    assert.equal(pixels.count, 0, `${hash}: ${pixels.count} pixels not red, first ${pixels.sample}`);
  }
});
